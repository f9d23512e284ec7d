#pragma once

#include <string>

/// @file
/// What the loader tells of a library that it can't load.

namespace hvk3 {

/// The file that it misses, the library itself or one that this needs; empty when it misses none.
std::string missing_file(const std::string& text);

/// Whether the loader passes over such a file where it searches folders, and goes on to the next
/// one: a file that was named by its path and is "missing" is for another machine or nobody to
/// read.
bool is_passed_over(const std::string& text);

}  // namespace hvk3
