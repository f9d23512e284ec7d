#pragma once

#include <string>

/// @file
/// The manual, out of what the help is made of.

namespace CLI {
class App;
}

namespace hvk3 {

/// What stands at the foot of a page. Both are given, so that every build makes the same pages.
struct ManEdition {
  std::string version;
  std::string date;
};

/// The page of a command in the language of man(7).
/// @param title the command's words with hyphens between, such as hvk3-property-get
std::string man_page(const CLI::App& command, const std::string& title, const ManEdition& edition);

}  // namespace hvk3
