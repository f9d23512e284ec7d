#pragma once

#include <string>

#include "view/canvas.h"

/// @file
/// A picture of the window as a file.

namespace hvk3::view {

/// Writes a PNG with mode 0600, for a fingerprint may be in it; whole or not at all.
/// @throws Failure `OutputFailed`
void write_window_picture(const Canvas::Pixels& pixels, const std::string& path);

}  // namespace hvk3::view
