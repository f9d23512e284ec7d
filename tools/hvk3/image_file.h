#pragma once

#include <string>

#include "hvk3/image.h"

/// @file
/// Images as files.

namespace hvk3 {

/// Whether the path ends in an extension that `write_image` knows: .png or .bmp, in any case.
bool is_image_path(const std::string& path);

/// Writes an 8-bit gray PNG or BMP, by the extension of `path`, with its resolution. The file
/// appears whole, with mode 0600, or not at all.
/// @throws Failure `OutputFailed`
void write_image(const Image& image, const std::string& path);

}  // namespace hvk3
