#pragma once

#include <string>
#include <vector>

/// @file
/// A program that the tool runs for the user.

namespace hvk3 {

/// How a program ended.
struct ProgramEnd {
  int status = 0;          ///< its exit status; 128 + n when signal n ended it
  bool by_signal = false;  ///< whether one did
};

/// Where a program's standard output goes.
enum class eOutput { Standard, Error };

/// Runs a program with this one's standard streams and environment, and waits for its end. Signals
/// that ask for an end meanwhile are the program's.
/// @throws Failure `Usage` for a program that can't be run
ProgramEnd run_program(const std::vector<std::string>& words, eOutput output);

}  // namespace hvk3
