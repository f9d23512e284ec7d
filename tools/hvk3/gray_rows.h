#pragma once

#include <cstdio>

#include "ostrevanhvk3/image_block.h"

namespace hvk3 {

/// Writes the gray levels from the top row down, without the padding that rows have in memory.
/// @return false when the stream failed
[[nodiscard]] inline bool write_gray_rows(Osv::lx::ImageView image, std::FILE* stream) {
  bool written = true;
  for (std::size_t y = 0; written && y < image.height(); ++y) {
    written = std::fwrite(image.row_from_top(y), image.width(), 1, stream) == 1;
  }
  return written;
}

}  // namespace hvk3
