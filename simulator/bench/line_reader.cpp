#include "bench/line_reader.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "bench/words.h"

namespace Osv::simulator {
namespace {

[[noreturn]] void refuse_value(const Argument& argument, const std::string& value) {
  throw std::invalid_argument("'" + value + "' is no " + argument.name + " (" + argument.meaning +
                              ")");
}

bool is_one_of_seven_bytes(std::string_view text) {
  constexpr std::size_t kDigits = 14;
  return text.size() == kDigits && std::all_of(text.begin(), text.end(), [](unsigned char digit) {
           return std::isxdigit(digit) != 0;
         });
}

bool is_number_between(std::string_view text, long low, long high) {
  constexpr std::size_t kMostDigits = 10;
  const bool digits = !text.empty() && text.size() <= kMostDigits &&
                      std::all_of(text.begin(), text.end(),
                                  [](unsigned char digit) { return std::isdigit(digit) != 0; });
  if (!digits) {
    return false;
  }
  const long number = std::stol(std::string(text));
  return low <= number && number <= high;
}

bool can_be(const Argument& argument, std::string_view value) {
  const std::string_view name = argument.name;
  if (!argument.words.empty()) {
    return std::find(argument.words.begin(), argument.words.end(), value) != argument.words.end();
  }
  if (name == "BYTES") {
    return is_one_of_seven_bytes(value);
  }
  if (name == "FUNCTION") {
    return function_named(value).has_value();
  }
  const bool any_text = argument.high == 0;
  return any_text ? !value.empty() : is_number_between(value, argument.low, argument.high);
}

/// How a line compares with a pattern.
struct Match {
  bool whole = false;
  std::size_t words = 0;            // that fit, from the first on
  const Argument* wrong = nullptr;  // the argument for which the next one is no value
  std::string wrong_value;
  Values values;
};

/// "frame" and "call" will do where one is meant.
bool fits(std::string_view word, std::string_view literal) {
  return word == literal ||
         (literal.ends_with("s") && !word.empty() && word == literal.substr(0, literal.size() - 1));
}

/// Takes the next word of the line for that of the pattern, if it fits.
bool take_word(std::string_view wanted, Words& line, Match& match) {
  const Argument* const argument = argument_named(wanted);
  if (argument == nullptr) {
    const bool good = !line.is_quoted() && fits(line.word(), wanted);
    if (good) {
      line.advance();
    }
    return good;
  }
  if (line.ended()) {
    return false;
  }
  if (!can_be(*argument, line.word())) {
    match.wrong = argument;
    match.wrong_value = line.word();
    return false;
  }
  if (wanted == "FAULT") {
    match.values.add(line.rest());
  } else {
    match.values.add(std::string(line.word()));
    line.advance();
  }
  return true;
}

Match compare(const std::string& text, const Entry& entry) {
  Words line(text, "line");
  Match match;
  for (Words pattern(entry.pattern, "pattern"); !pattern.ended(); pattern.advance()) {
    if (!take_word(pattern.word(), line, match)) {
      return match;
    }
    ++match.words;
  }
  match.whole = line.ended();
  return match;
}

std::string word_number(const std::string& text, std::size_t number) {
  Words line(text, "line");
  for (; number > 0; --number) {
    line.advance();
  }
  return line.ended() ? "its end" : "'" + std::string(line.word()) + "'";
}

/// Says where the line went wrong, and what is known that begins like it.
[[noreturn]] void refuse_line(const std::string& text, const std::vector<Match>& matches) {
  std::size_t longest = 0;
  for (const Match& match : matches) {
    longest = std::max(longest, match.words);
  }
  std::string known;
  for (std::size_t i = 0; i < matches.size(); ++i) {
    if (matches[i].words != longest) {
      continue;
    }
    if (matches[i].wrong != nullptr) {
      refuse_value(*matches[i].wrong, matches[i].wrong_value);
    }
    known += std::string(known.empty() ? "" : ", ") + "'" + entry_table()[i].pattern + "'";
  }
  throw std::invalid_argument("not understood at " + word_number(text, longest) + "; known is " +
                              (longest == 0 ? "what 'help' lists" : known));
}

Step make_step(const Entry& entry, const Values& values) {
  try {
    return entry.make(values);
  } catch (const std::runtime_error& error) {
    throw std::invalid_argument(error.what());  // a picture that can't be read
  }
}

/// The line up to a '#' that stands outside quotes.
std::string without_comment(const std::string& line) {
  bool quoted = false;
  std::size_t end = 0;
  for (; end < line.size() && (quoted || line[end] != '#'); ++end) {
    quoted ^= line[end] == '\'';
  }
  return line.substr(0, end);
}

}  // namespace

std::optional<Step> read_line(const std::string& line) {
  const std::string text = without_comment(line);
  if (Words(text, "line").ended()) {
    return std::nullopt;
  }
  std::vector<Match> matches;
  for (const Entry& entry : entry_table()) {
    matches.push_back(compare(text, entry));
    if (matches.back().whole) {
      return make_step(entry, matches.back().values);
    }
  }
  refuse_line(text, matches);
}

}  // namespace Osv::simulator
