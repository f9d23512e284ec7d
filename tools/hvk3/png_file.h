#pragma once

#include <cstdio>

#include "hvk3/image.h"

namespace hvk3 {

/// Writes the image as an 8-bit gray PNG with its resolution. @return false when the stream failed
[[nodiscard]] bool write_png(const Image& image, std::FILE* stream);

}  // namespace hvk3
