#pragma once

#include <set>
#include <string>
#include <vector>

/// @file
/// The symbols that a shared library shows.

namespace hvk3 {

/// Takes symbols out of what a library exports, in its file's content: the loader finds them no
/// more than in a library that never had them.
/// @throws Failure `Internal` for what is no library of this machine
void hide_symbols(std::vector<char>& library, const std::set<std::string>& names);

}  // namespace hvk3
