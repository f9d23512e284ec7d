#include "detection/live_detection.h"

namespace Osv::lx {

bool ClLiveDetection::Detect(utilities::ClSimpleBitmap& in, utilities::ClSimpleBitmap& out) {
  out = in;
  return true;
}

}  // namespace Osv::lx
