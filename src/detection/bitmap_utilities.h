#pragma once

#include "foundation/bitmap.h"

namespace Osv::lx {

/// Measures of 8-bit gray images. They read each row once, in order, and allocate nothing.
class ClBitmapUtilities {
 public:
  /// The sum of all pixels, without the rows' padding.
  static unsigned long Gray_Sum(const utilities::ClSimpleBitmap& bitmap);

  /// The mean gray level of the columns `from` up to but excluding `to`, cut towards zero. The mean
  /// of no pixels is brighter than that of any image.
  static unsigned long Gray_Avarage(const utilities::ClSimpleBitmap& bitmap, unsigned long from,
                                    unsigned long to);

  /// The mean gray level of all columns.
  static unsigned long Gray_Avarage(const utilities::ClSimpleBitmap& bitmap);
};

}  // namespace Osv::lx
