#pragma once

#include "foundation/bitmap.h"

/// @file
/// The pictures that `ClSimpleBitmap::Rescale` makes.

namespace Osv::utilities {

/// The picture in another size, as `eRescaleBilinear` gives it; neither side may be 0.
/// @throws CXMemoryAllocException as `Create` does
ClSimpleBitmap interpolated(const ClSimpleBitmap& source, unsigned long width,
                            unsigned long height);

/// The picture in twice its size, as `eRescaleDouble` gives it.
/// @throws CXMemoryAllocException as `Create` does
ClSimpleBitmap doubled(const ClSimpleBitmap& source);

}  // namespace Osv::utilities
