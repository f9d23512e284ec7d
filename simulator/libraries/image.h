#pragma once

#include <cstddef>
#include <optional>

#include "ostrevanhvk3/image_block.h"

/// @file
/// Bitmaps as they come into the stand-ins.

namespace Osv::simulator {

/// A read-only view of an 8-bit bitmap that has been checked. Rows count from the top.
struct ImageIn {
  int width = 0;
  int height = 0;
  std::size_t stride = 0;
  const unsigned char* lowest_row = nullptr;

  const unsigned char* row(int y) const {
    return lowest_row + static_cast<std::size_t>(height - 1 - y) * stride;
  }
};

/// The bitmap of a block of `size` bytes, or nothing when it is no plain 8-bit bitmap, or is not
/// wholly inside the block.
std::optional<ImageIn> read_bitmap(const tagBITMAPINFOHEADER* bitmap, unsigned long size);

}  // namespace Osv::simulator
