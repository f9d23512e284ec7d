#pragma once

#include "foundation/bitmap.h"
#include "foundation/pixel_kernels.h"

/// @file
/// The pictures that `ClSimpleBitmap::Rescale` makes.

namespace Osv::utilities {

/// The picture in another size, as `eRescaleBilinear` gives it; neither side may be 0.
/// @throws CXMemoryAllocException as `Create` does
ClSimpleBitmap interpolated(const ClSimpleBitmap& source, unsigned long width, unsigned long height,
                            const img::PixelKernels& kernels = img::pixel_kernels());

/// The picture in twice its size, as `eRescaleDouble` gives it.
/// @throws CXMemoryAllocException as `Create` does
ClSimpleBitmap doubled(const ClSimpleBitmap& source,
                       const img::PixelKernels& kernels = img::pixel_kernels());

}  // namespace Osv::utilities
