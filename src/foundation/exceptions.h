#pragma once

#include <array>
#include <exception>
#include <string>

#include "ostrevanhvk3/module_exception.h"

/// @file
/// The exception family. Every failure inside the plug-in travels as one of these classes; the
/// facade and the exported functions turn them into numbers and texts.
///
/// The number sits on the two branches and not on `CXException`: a handler that wants it has to
/// catch one of them, and a `CXMemoryAllocException` has none.
///
/// `lx::CLX3ModuleException` stands outside the family and goes through to the client, so it is
/// declared with the client's headers.

namespace Osv {

/// Root of the family. `What` names the failure.
class ClOstrevanException : public std::exception {
 public:
  virtual const char* What() const noexcept = 0;
};

/// Answers both `what` and `What` with the description.
class CXException : public ClOstrevanException {
 public:
  const char* what() const noexcept override { return GetDescription(); }
  const char* What() const noexcept override { return GetDescription(); }
  virtual const char* GetDescription() const noexcept = 0;
};

/// A failure with a number and a text of at most 1024 characters. Building one allocates nothing.
class CXOtherException : public CXException {
 public:
  static constexpr std::size_t kMaxText = 1024;

  /// @param text null for an empty description; cut at 1024 characters
  CXOtherException(const char* text, int number);

  const char* GetDescription() const noexcept override { return m_szDescription.data(); }
  virtual int GetErrorNumber() const { return m_nError; }

 private:
  // A text of full length leaves no room for a terminator in the first 1024 bytes, so a zero that
  // nothing overwrites stands behind them.
  std::array<char, kMaxText + 1> m_szDescription;
  int m_nError;
};

/// A failed call of the system; carries `errno` as it stood at construction. Build it before any
/// other call of the system.
class CXSystemException : public CXException {
 public:
  CXSystemException();

  const char* GetDescription() const noexcept override;
  virtual int GetErrorNumber() const { return m_nError; }

 private:
  int m_nError;
};

/// Memory ran out.
class CXMemoryAllocException : public CXException {
 public:
  const char* GetDescription() const noexcept override { return "memory allocation failed"; }
};

/// Malformed calibration header.
class ClHeaderFormatException : public CXOtherException {
  using CXOtherException::CXOtherException;
};

/// The description does not fit the calibration header.
class ClCHeaderDesrcTooLongException : public CXOtherException {
  using CXOtherException::CXOtherException;
};

/// A library that can't be loaded. A type for a handler to name; nothing throws it today.
class CXDynamicLibraryException : public CXSystemException {};

/// A configuration file that can't be used; tells the innermost thing it was about.
class CXConfigFileParsingException : public CXOtherException {
 public:
  /// Each text may be null. The first that is not, in the order value, parameter, section, selects
  /// the wording and is the one that is kept.
  CXConfigFileParsingException(int number, const char* section, const char* parameter,
                               const char* value);

  const std::string& Section() const { return m_sSection; }
  const std::string& Parameter() const { return m_sParameter; }
  const std::string& Value() const { return m_sValue; }

 private:
  std::string m_sSection;
  std::string m_sParameter;
  std::string m_sValue;
};

namespace lx {

/// The plug-in's own failures: the number is the client's error number.
class ClLXException : public CXOtherException {
  using CXOtherException::CXOtherException;
};

/// A warning, not a failure. A type for a handler to name, which must stand before one for
/// `ClLXException`; nothing throws it today.
class ClLXWarning : public ClLXException {
  using ClLXException::ClLXException;
};

/// A failure of the fake finger library, with the library's code as number.
class CLiveDetectionException : public CXOtherException {
  using CXOtherException::CXOtherException;
};

/// The scanner's hardware, or the level of its library, lacks a function.
class ClKR9NOTImplException : public CXOtherException {
  using CXOtherException::CXOtherException;
};

}  // namespace lx

namespace file {

/// A file that can't be opened; the description is the path, a blank and the system's text.
class CXFileNotFound : public CXSystemException {
 public:
  explicit CXFileNotFound(const char* path);

  const char* GetDescription() const noexcept override { return m_sDescription.c_str(); }

 private:
  std::string m_sDescription;
};

}  // namespace file

namespace utilities {

template <typename Base>
class ClContextException;

/// A failure whose `what` wraps the message as " Message[...]". The only class in which `what` and
/// `What` differ.
template <>
class ClContextException<CXOtherException> : public CXOtherException {
 public:
  ClContextException(const char* text, int number);

  const char* what() const noexcept override { return m_sContext.c_str(); }

 private:
  std::string m_sContext;
};

/// Builds the exception of class `Base` in its context form.
template <typename Base, typename Text, typename Number>
ClContextException<Base> MakeException(Text text, Number number) {
  return ClContextException<Base>(text, number);
}

}  // namespace utilities
}  // namespace Osv
