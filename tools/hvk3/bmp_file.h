#pragma once

#include <cstdio>

#include "hvk3/image.h"

namespace hvk3 {

/// Writes the image as an 8-bit BMP. @return false when the stream failed
[[nodiscard]] bool write_bmp(const Image& image, std::FILE* stream);

}  // namespace hvk3
