#pragma once

#include <cstdio>

#include "hvk3/image.h"

namespace hvk3 {

/// Writes the image as a binary PGM, its resolution in a comment. @return false when the stream
///   failed
[[nodiscard]] bool write_pgm(const Image& image, std::FILE* stream);

}  // namespace hvk3
