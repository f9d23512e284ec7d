#pragma once

#include <string>
#include <string_view>

/// @file
/// A line of words.

namespace Osv::simulator {

/// The words of a line, read from left to right. A text in single quotes is one word.
/// Everything that does not fit throws std::invalid_argument, which names the word.
class Words {
 public:
  /// @param subject what the line is, for the text of the exception; has to outlive this
  Words(std::string_view text, const char* subject) : m_sText(text), m_pSubject(subject) {
    advance();
  }

  bool ended() const { return m_sWord.empty() && !m_bQuoted; }
  std::string_view word() const { return m_sWord; }
  bool is_quoted() const { return m_bQuoted; }

  /// Goes to the next word.
  void advance();

  /// Goes on behind `word` if it is the present one.
  bool accept(std::string_view word);
  void expect(std::string_view word);
  std::string quoted();

  /// A decimal or, behind 0x, hexadecimal number that fits.
  long whole_number();
  long whole_number_between(long low, long high);

  /// A finite number.
  double number();

  /// Everything from the present word on, as it stands.
  std::string rest();

  [[noreturn]] void refuse_here() const;

 private:
  [[noreturn]] void refuse(std::string_view word) const;
  void take_quoted();

  std::string_view m_sText;  // behind the present word
  std::string_view m_sWord;
  const char* m_pSubject;
  bool m_bQuoted = false;
};

}  // namespace Osv::simulator
