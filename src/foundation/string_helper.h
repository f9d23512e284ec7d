#pragma once

#include <string>

/// @file
/// Trimming of strings in place.

namespace Osv::stdstring_helper {

/// Removes leading blanks and tabs.
void trim_left(std::string& text);

/// Removes trailing blanks, tabs and carriage returns.
void trim_right(std::string& text);

/// Removes leading blanks and tabs, then trailing blanks, tabs and carriage returns, but as many of
/// the trailing characters survive as were removed in front. Configuration files are read this way
/// and it is to stay so.
void trim_both(std::string& text);

}  // namespace Osv::stdstring_helper
