#pragma once

#include <cstdint>
#include <span>

#include "foundation/bitmap.h"

namespace Osv::lx {

/// The sum of bytes.
std::uint64_t byte_sum(std::span<const unsigned char> bytes);

/// The sum of `count` columns of an 8-bit image from column `from` on, over all rows.
std::uint64_t column_sum(const utilities::ClSimpleBitmap& bitmap, unsigned long from,
                         unsigned long count);

/// The mean of so many rows and columns with this sum, cut towards zero. The mean of no pixels is
/// brighter than that of any image: as a frame it is no finger, as a background it makes one of
/// every image that is not black.
unsigned long gray_mean(std::uint64_t sum, unsigned long rows, unsigned long columns);

/// Measures of 8-bit gray images. They read each row once, in order, and allocate nothing.
class ClBitmapUtilities {
 public:
  /// The sum of all pixels, without the rows' padding.
  static unsigned long Gray_Sum(const utilities::ClSimpleBitmap& bitmap);

  /// The mean gray level of the columns `from` up to but excluding `to`, cut towards zero. The mean
  /// of no pixels is brighter than that of any image. @param to the width at most
  static unsigned long Gray_Avarage(const utilities::ClSimpleBitmap& bitmap, unsigned long from,
                                    unsigned long to);

  /// The mean gray level of all columns.
  static unsigned long Gray_Avarage(const utilities::ClSimpleBitmap& bitmap);
};

}  // namespace Osv::lx
