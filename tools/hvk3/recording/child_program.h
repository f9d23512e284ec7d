#pragma once

#include <string>
#include <vector>

/// @file
/// A program that the tool runs for the user.

namespace hvk3 {

/// Runs a program with this one's standard streams and environment, and waits for its end. Signals
/// that ask for an end meanwhile are the program's.
/// @return its exit status; 128 + n when signal n ended it
/// @throws Failure `Usage` for a program that can't be run
int run_program(const std::vector<std::string>& words);

}  // namespace hvk3
