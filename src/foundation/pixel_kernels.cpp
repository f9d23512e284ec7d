#include "foundation/pixel_kernels.h"

#include "foundation/pixel_kernel_sets.h"

namespace Osv::img {

const PixelKernels& pixel_kernels(InstructionSet set) {
  return set == InstructionSet::kAvx2 ? kAvx2Kernels : kSse2Kernels;
}

const PixelKernels& pixel_kernels() {
  static const PixelKernels& best = pixel_kernels(
      is_supported(InstructionSet::kAvx2) ? InstructionSet::kAvx2 : InstructionSet::kSse2);
  return best;
}

}  // namespace Osv::img
