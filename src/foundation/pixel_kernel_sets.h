#pragma once

#include "foundation/pixel_kernels.h"

namespace Osv::img {

extern const PixelKernels kSse2Kernels;
extern const PixelKernels kAvx2Kernels;

}  // namespace Osv::img
