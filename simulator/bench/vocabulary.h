#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "bench/functions.h"
#include "ostrevanhvk3_simulator/bench.h"

/// @file
/// The words that steer the simulator: tables from which lines are read and help is given,
/// and against which the page of the manual is tested.

namespace Osv::simulator {

/// A wait for calls that have ended.
struct CallWait {
  std::vector<eFunction> functions;  ///< any of them counts
  std::uint32_t calls = 0;
};

/// A line, read and ready to be carried out.
struct Step {
  std::function<std::string(Bench&)> act;  ///< does it, and gives the answer; null for a wait
  CallWait wait;
};

/// The arguments of a line in their order, as they were written.
class Values {
 public:
  void add(std::string value) { m_vValues.push_back(std::move(value)); }
  const std::string& text(std::size_t index) const { return m_vValues.at(index); }
  unsigned int number(std::size_t index) const {
    return static_cast<unsigned int>(std::stoul(text(index)));
  }
  bool is(std::size_t index, std::string_view word) const { return text(index) == word; }

 private:
  std::vector<std::string> m_vValues;
};

/// What can stand for an argument: one of its words, a number between its limits, or any text.
struct Argument {
  const char* name;
  const char* meaning;
  std::vector<std::string_view> words;
  long low;
  long high;
};

/// A kind of line: its words, those in capitals being arguments, and what it does.
struct Entry {
  const char* pattern;
  const char* meaning;
  Step (*make)(const Values& values);
};

/// The two tables, and the argument of a name, null for a word that is none.
/// @{
const std::vector<Entry>& entry_table();
const std::vector<Argument>& argument_table();
const Argument* argument_named(std::string_view name);
/// @}

/// The words with their meanings, and what their arguments can be.
/// @{
std::vector<Word> all_words();
std::vector<Word> all_arguments();
std::string vocabulary_text();
/// @}

}  // namespace Osv::simulator
