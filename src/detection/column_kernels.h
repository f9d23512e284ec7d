#pragma once

#include <span>

#include "foundation/bitmap.h"

/// @file
/// Work on all columns of an 8-bit image at once. The memory is walked by rows, as it lies; the
/// results are those of column after column.

namespace Osv::lx {

/// Sets `sums` to the sums of the first columns over all rows, one for each column; not more of
/// them than the image has columns.
void column_sums(const utilities::ClSimpleBitmap& bitmap, std::span<unsigned long> sums);

/// What `copy_columns` takes for a column that it copies; 0 stands for any other.
inline constexpr unsigned char kColumnMarked = 0xFF;

/// Copies the marked columns to the same place in the target. `marks` stand for the columns from
/// `first` on. Height and stride are the source's for both images, so the target should have its
/// size: what would lie behind the target's last row is left out.
void copy_columns(const utilities::ClSimpleBitmap& source, utilities::ClSimpleBitmap& target,
                  unsigned long first, std::span<const unsigned char> marks);

}  // namespace Osv::lx
