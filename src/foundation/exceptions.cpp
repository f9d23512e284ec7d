#include "foundation/exceptions.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace Osv {
namespace {

std::string text_or_empty(const char* text) { return text == nullptr ? std::string() : text; }

/// The description of a parsing failure, worded after the innermost thing that is known.
std::array<char, CXOtherException::kMaxText + 1> parsing_text(int number, const char* section,
                                                              const char* parameter,
                                                              const char* value) {
  std::array<char, CXOtherException::kMaxText + 1> text{};
  const std::string in = text_or_empty(section);
  if (value != nullptr) {
    std::snprintf(text.data(), text.size(),
                  "Error %d by parsing config file value %s of %s parameter in %s section", number,
                  value, text_or_empty(parameter).c_str(), in.c_str());
  } else if (parameter != nullptr) {
    std::snprintf(text.data(), text.size(),
                  "Error %d by parsing config file %s parameter in %s section", number, parameter,
                  in.c_str());
  } else if (section != nullptr) {
    std::snprintf(text.data(), text.size(), "Error %d by parsing config file %s section", number,
                  section);
  } else {
    std::snprintf(text.data(), text.size(), "Error %d by parsing config file", number);
  }
  return text;
}

}  // namespace

CXOtherException::CXOtherException(const char* text, int number)
    : m_szDescription{}, m_nError(number) {
  if (text != nullptr) {
    std::memcpy(m_szDescription.data(), text, strnlen(text, kMaxText));
  }
}

CXSystemException::CXSystemException() : m_nError(errno) {}

const char* CXSystemException::GetDescription() const noexcept { return std::strerror(m_nError); }

CXConfigFileParsingException::CXConfigFileParsingException(int number, const char* section,
                                                           const char* parameter, const char* value)
    : CXOtherException(parsing_text(number, section, parameter, value).data(), number) {
  if (value != nullptr) {
    m_sValue = value;
  } else if (parameter != nullptr) {
    m_sParameter = parameter;
  } else {
    m_sSection = text_or_empty(section);
  }
}

namespace file {

CXFileNotFound::CXFileNotFound(const char* path)
    : m_sDescription(std::string(path) + ' ' + std::strerror(GetErrorNumber())) {}

}  // namespace file

namespace utilities {

ClContextException<CXOtherException>::ClContextException(const char* text, int number)
    : CXOtherException(text, number),
      m_sContext(std::string(" Message[") + GetDescription() + "]") {}

}  // namespace utilities
}  // namespace Osv
