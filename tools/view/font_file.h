#pragma once

#include <string>

/// @file
/// A font of the system.

namespace hvk3::view {

/// The file of the system's sans-serif font.
/// @throws Failure `OutputFailed` when the system has no font
std::string find_font_file();

}  // namespace hvk3::view
