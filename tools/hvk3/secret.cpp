#include "hvk3/secret.h"

#include <cstring>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <fstream>
#include <iostream>

#include "hvk3/failure.h"
#include "ostrevanhvk3/feature.h"

namespace hvk3 {
namespace {

constexpr std::size_t kMostInput = 4096;
constexpr int kHexadecimal = 16;
constexpr std::size_t kDigits = 2;

std::string content_of(std::istream& in, bool hex) {
  std::string content(kMostInput, '\0');
  in.read(content.data(), static_cast<std::streamsize>(content.size()));
  content.resize(static_cast<std::size_t>(in.gcount()));
  if (hex) {
    const auto is_space = [](unsigned char letter) { return std::isspace(letter) != 0; };
    content.erase(std::remove_if(content.begin(), content.end(), is_space), content.end());
  }
  return content;
}

std::string content_of(const char* option, const std::string& path, bool hex) {
  std::ifstream file(path, std::ios::binary);
  if (!file.is_open()) {
    throw Failure(ExitStatus::Usage, std::string(option) + " names no file that can be read");
  }
  return content_of(file, hex);
}

void wipe(std::string& content) { ::explicit_bzero(content.data(), content.size()); }

[[noreturn]] void throw_size(const std::string& source, bool hex) {
  throw Failure(ExitStatus::Usage, source + (hex ? " does not hold 14 hexadecimal digits"
                                                 : " does not hold exactly 7 bytes"));
}

}  // namespace

SecretBytes::~SecretBytes() { ::explicit_bzero(m_aBytes.data(), m_aBytes.size()); }

std::string SecretBytes::hex() const {
  constexpr char kSigns[] = "0123456789abcdef";
  std::string text;
  for (const unsigned char byte : m_aBytes) {
    text.append(1, kSigns[byte >> 4]).append(1, kSigns[byte & 0xF]);
  }
  return text;
}

SecretBytes SecretReader::read(const char* option, const std::string& path) {
  if (path != "-") {
    const std::string source = std::string("the file of ") + option;
    std::string content = content_of(option, path, m_bHex);
    const SecretBytes bytes = take(content, source);
    if (!content.empty()) {
      throw_size(source, m_bHex);
    }
    return bytes;
  }
  if (!m_bInputRead) {
    m_bInputRead = true;
    m_sInput = content_of(std::cin, m_bHex);
  }
  return take(m_sInput, "standard input");
}

SecretBytes SecretReader::take(std::string& content, const std::string& source) const {
  const std::size_t size = SecretBytes::kSize * (m_bHex ? kDigits : 1);
  if (content.size() < size) {
    throw_size(source, m_bHex);
  }
  SecretBytes bytes;
  for (std::size_t i = 0; i < SecretBytes::kSize; ++i) {
    const char* const at = content.data() + i * (m_bHex ? kDigits : 1);
    if (!m_bHex) {
      bytes.data()[i] = static_cast<unsigned char>(*at);
    } else if (std::from_chars(at, at + kDigits, bytes.data()[i], kHexadecimal).ptr !=
               at + kDigits) {
      throw_size(source, m_bHex);
    }
  }
  std::string rest = content.substr(size);
  wipe(content);
  content = std::move(rest);
  return bytes;
}

void SecretReader::finish() const {
  if (!m_sInput.empty()) {
    throw Failure(ExitStatus::Usage, "standard input holds more than is asked for");
  }
}

void refuse_secret(const FeatureDescription& feature) {
  if (feature.number == eFeatureAuthorizationCode || feature.number == eFeatureSecretBytes) {
    throw Failure(ExitStatus::Usage, "feature " + std::to_string(feature.number) +
                                         " is for 'hvk3 secret', off the command line");
  }
}

}  // namespace hvk3
