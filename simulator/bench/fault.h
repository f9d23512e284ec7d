#pragma once

#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "bench/functions.h"

/// @file
/// Faults and the words for them.

namespace Osv::simulator {

/// The longest text that a plan can give for an error, in characters.
inline constexpr long kLongestDescription = 5000;

struct FrameSize {
  int width = 0;
  int height = 0;
};

/// What the fault plan wants of one call.
struct Effects {
  std::optional<long> fails_with;  ///< nothing is done; the error of the failure
  std::optional<long> answer;      ///< all is done, then this is answered
  std::optional<long> error;       ///< last error that goes with `answer`
  std::optional<double> number;    ///< the value that is given out
  std::optional<long> size;        ///< the size, length or count of characters
  std::optional<FrameSize> frame_size;
  std::optional<std::string> text;
  bool null_handle = false;
  bool no_text = false;
  bool blocks = false;

  /// Takes over what the other one asks for.
  void add(const Effects& other);
};

/// One fault: effects on some calls of one function.
struct Fault {
  eFunction function = {};
  std::optional<std::string> subject;  ///< only calls with this text for their main argument
  unsigned int first = 1;
  unsigned int last = std::numeric_limits<unsigned int>::max();
  Effects effects;
};

/// Reads a fault plan. @throws std::invalid_argument naming the word that is not understood
std::vector<Fault> parse_faults(const std::string& words);

}  // namespace Osv::simulator
