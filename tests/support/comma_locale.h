#pragma once

#include <locale>
#include <string>

/// @file
/// The locale of a client.

namespace Osv::testing_support {

/// Makes numbers of the C++ streams look foreign while an object of this class lives: a decimal
/// comma, and a point between any two digits.
class CommaLocale {
 public:
  CommaLocale()
      : m_before(std::locale::global(std::locale(std::locale::classic(), new Punctuation))) {}
  ~CommaLocale() { std::locale::global(m_before); }
  CommaLocale(const CommaLocale&) = delete;
  CommaLocale& operator=(const CommaLocale&) = delete;

 private:
  struct Punctuation : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\1"; }
  };

  std::locale m_before;
};

}  // namespace Osv::testing_support
