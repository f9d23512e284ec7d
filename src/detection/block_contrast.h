#pragma once

#include <cstddef>
#include <span>

namespace Osv::lx {

/// How far the high mark of a block of pixels lies above its low mark; below 0 where it lies lower.
/// The marks begin at 0 and 255. A pixel that is below the low mark lowers it and leaves the high
/// mark alone; any other raises the high mark if it is above.
int contrast_of(std::span<const unsigned char> block);

/// True when more than `count` of the blocks that the pixels are made of have a contrast above
/// `contrast`. A block has `block` pixels, of which there is at least one; the last may be shorter.
bool has_contrast(std::span<const unsigned char> pixels, std::size_t block, std::size_t count,
                  int contrast);

}  // namespace Osv::lx
