#include "privacy/leaks.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdio>

namespace Osv::privacy {
namespace {

constexpr const char* kSeparators[] = {"", " ", ",", ", ", ":", ";", "-", ".", "|", "/"};
constexpr const char* kHexadecimal[] = {"%02x", "%x", "0x%02x", "0x%x", "\\x%02x"};
constexpr const char* kDecimal[] = {"%d", "%3d", "%03d"};

std::string number(const char* format, int value) {
  char text[16];
  std::snprintf(text, sizeof(text), format, value);
  return text;
}

std::string joined(const Bytes& run, const char* format, const char* separator) {
  std::string text;
  for (const unsigned char byte : run) {
    text += (text.empty() ? "" : separator) + number(format, byte);
  }
  return text;
}

std::string joined_signed(const Bytes& run, const char* separator) {
  std::string text;
  for (const unsigned char byte : run) {
    text += (text.empty() ? "" : separator) + number("%d", static_cast<signed char>(byte));
  }
  return text;
}

std::string small(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  return text;
}

Bytes part(const Bytes& bytes, std::size_t begin, std::size_t count) {
  const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(begin);
  return {first, first + static_cast<std::ptrdiff_t>(count)};
}

std::string first_found(const std::string& text, const std::vector<std::string>& patterns) {
  const auto found = std::find_if(
      patterns.begin(), patterns.end(),
      [&](const std::string& pattern) { return text.find(pattern) != std::string::npos; });
  return found == patterns.end() ? "" : *found;
}

}  // namespace

void Leaks::add(const Bytes& secret) {
  for (std::size_t begin = 0; begin + kRun <= secret.size(); ++begin) {
    add_run(part(secret, begin, kRun));
  }
  for (std::size_t begin = 0; begin + sizeof(std::uint32_t) <= secret.size(); ++begin) {
    add_word(part(secret, begin, sizeof(std::uint32_t)));
  }
}

void Leaks::add_run(const Bytes& run) {
  m_vRaw.emplace_back(run.begin(), run.end());
  for (const char* separator : kSeparators) {
    for (const char* format : kHexadecimal) {
      m_vRenderings.push_back(joined(run, format, separator));
    }
    for (const char* format : kDecimal) {
      m_vRenderings.push_back(joined(run, format, separator));
    }
    m_vRenderings.push_back(joined_signed(run, separator));
  }
}

void Leaks::add_word(const Bytes& word) {
  for (const bool little_endian : {false, true}) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < word.size(); ++i) {
      value = value << 8 | word[little_endian ? word.size() - 1 - i : i];
    }
    m_vRenderings.push_back(std::to_string(value));
    m_vRenderings.push_back(std::to_string(static_cast<std::int32_t>(value)));
    m_vRenderings.push_back(number("%x", static_cast<int>(value)));
  }
}

std::string Leaks::in(const std::string& text) const {
  const std::string raw = first_found(text, m_vRaw);
  return raw.empty() ? first_found(small(text), m_vRenderings) : raw;
}

}  // namespace Osv::privacy
