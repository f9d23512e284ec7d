#pragma once

#include <string>

/// @file
/// Completion of command lines.

namespace CLI {
class App;
}

namespace hvk3 {

/// A script for bash that completes the commands of `app`, a program of this name, their options,
/// and arguments that are one of some words. Other arguments complete as file names.
std::string bash_completion(const CLI::App& app);

}  // namespace hvk3
