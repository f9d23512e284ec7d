#pragma once

#include <string>

/// @file
/// A word to the user, from inside a program that is somebody else's.

namespace Osv::recorder {

/// Writes a line to standard error, without the program's own buffers.
void message(const std::string& text) noexcept;

}  // namespace Osv::recorder
