#pragma once

#include <concepts>
#include <istream>
#include <map>
#include <ostream>
#include <string>
#include <type_traits>

/// @file
/// One section of a configuration file.

namespace Osv {

/// What a parameter's value converts to.
template <typename T>
concept ConfigValue = std::same_as<T, std::string> || std::same_as<T, bool>;

/// The parameter lines of one section, sorted by the byte value of their names. Names are case
/// sensitive. No lock.
class CXConfigSection {
 public:
  explicit CXConfigSection(const std::string& name) : m_sName(name) {}

  /// Takes a line `name = value`, trimmed with `trim_both`; a "#" ends it anywhere. Name and value
  /// may be empty, and a later value replaces an earlier one. This form reads configuration files.
  /// @return false for a comment and for a line without "="
  bool ParseString1(const std::string& line);

  /// Takes a line without trimming. A value that is followed by a comment keeps as many characters
  /// as stand in front of the "#", counted from behind the "=".
  /// @return false for a line without "=" or with a "#" in front of it
  bool ParseString(const std::string& line);

  /// Takes lines to the stream's end as `ParseString` does, for files with one blank in
  /// front of the "=": the character there is dropped. A name keeps its first value.
  std::istream& Load(std::istream& in);

  /// Writes the lines whose value is not empty.
  void Save(std::ostream& out) const;

  /// The value; a missing name is added with an empty one.
  std::string& operator[](const std::string& name) { return m_mapLines[name]; }

  /// A copy of the value; empty for a missing name.
  std::string operator[](const std::string& name) const;

  /// Reads a value. A boolean is one of true, 1, y, on, false, 0, n, off in any case.
  /// @throws CXConfigFileParsingException -1011 for a missing name, -1012 for a value that is no
  ///   boolean
  template <ConfigValue T>
  void ReadValue(const std::string& name, T& out) const {
    Convert(name, Mandatory(name), out);
  }

  /// As above, but a missing name gives `fallback`.
  template <ConfigValue T>
  void ReadValue(const std::string& name, T& out, const std::type_identity_t<T>& fallback) const {
    if (m_mapLines.contains(name)) {
      ReadValue(name, out);
    } else {
      out = fallback;
    }
  }

 private:
  const std::string& Mandatory(const std::string& name) const;
  void Convert(const std::string& name, const std::string& value, std::string& out) const;
  void Convert(const std::string& name, const std::string& value, bool& out) const;

  std::map<std::string, std::string> m_mapLines;
  std::string m_sName;
};

}  // namespace Osv
