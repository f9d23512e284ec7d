#include "detection/preview_detection.h"

namespace Osv::lx {

bool ClPreviewDetection::Detect(utilities::ClSimpleBitmap& /*in*/,
                                utilities::ClSimpleBitmap& /*out*/) {
  return false;
}

}  // namespace Osv::lx
