#include "bench/words.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <stdexcept>
#include <system_error>

namespace Osv::simulator {

void Words::refuse(std::string_view word) const {
  throw std::invalid_argument(std::string(m_pSubject) + " not understood at '" + std::string(word) +
                              "'");
}

void Words::refuse_here() const {
  refuse(ended() ? std::string("end of ") + m_pSubject : std::string(m_sWord));
}

bool Words::accept(std::string_view word) {
  const bool fits = !m_bQuoted && m_sWord == word;
  if (fits) {
    advance();
  }
  return fits;
}

void Words::expect(std::string_view word) {
  if (!accept(word)) {
    refuse_here();
  }
}

std::string Words::quoted() {
  if (!m_bQuoted) {
    refuse_here();
  }
  std::string text(m_sWord);
  advance();
  return text;
}

long Words::whole_number() {
  const std::string text(m_sWord);
  char* end = nullptr;
  const int base = text.find("0x") == std::string::npos ? 10 : 16;
  errno = 0;
  const long value = std::strtol(text.c_str(), &end, base);
  if (m_bQuoted || text.empty() || *end != '\0' || errno == ERANGE) {
    refuse_here();
  }
  advance();
  return value;
}

long Words::whole_number_between(long low, long high) {
  const std::string_view word = m_sWord;
  const long number = whole_number();
  if (number < low || number > high) {
    refuse(word);
  }
  return number;
}

double Words::number() {
  double value = 0;
  const char* const end = m_sWord.data() + m_sWord.size();
  const std::from_chars_result read = std::from_chars(m_sWord.data(), end, value);
  if (m_bQuoted || read.ptr != end || read.ec != std::errc() || !std::isfinite(value)) {
    refuse_here();
  }
  advance();
  return value;
}

std::string Words::rest() {
  const char* const begin = m_sWord.data() - (m_bQuoted ? 1 : 0);
  const char* const end = m_sText.data() + m_sText.size();
  std::string all(begin, end);
  all.erase(all.find_last_not_of(" \t\r") + 1);
  m_sText = {};
  m_sWord = {};
  m_bQuoted = false;
  return all;
}

void Words::advance() {
  constexpr std::string_view kBlanks = " \t\r";
  m_sText.remove_prefix(std::min(m_sText.find_first_not_of(kBlanks), m_sText.size()));
  m_bQuoted = m_sText.starts_with('\'');
  if (m_bQuoted) {
    take_quoted();
    return;
  }
  m_sWord = m_sText.substr(0, m_sText.find_first_of(kBlanks));
  m_sText.remove_prefix(m_sWord.size());
}

void Words::take_quoted() {
  const std::size_t end = m_sText.find('\'', 1);
  if (end == std::string_view::npos) {
    refuse(m_sText);
  }
  m_sWord = m_sText.substr(1, end - 1);
  m_sText.remove_prefix(end + 1);
}

}  // namespace Osv::simulator
