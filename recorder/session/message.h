#pragma once

#include <string_view>

/// @file
/// A word to the user, from inside a program that is somebody else's.

namespace Osv::recorder {

/// Writes a line to standard error, without the program's own buffers. A fork of a
/// program with threads may do so.
void message(std::string_view text) noexcept;

}  // namespace Osv::recorder
