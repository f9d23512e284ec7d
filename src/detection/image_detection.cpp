#include "detection/image_detection.h"

#include <array>
#include <memory>

#include "detection/fast_plain_finger_detection.h"
#include "detection/live_detection.h"
#include "detection/plain_finger_detection.h"
#include "detection/preview_detection.h"
#include "detection/rolled_finger_lx1.h"

namespace Osv::lx {
namespace {

using Strategy = std::unique_ptr<ClImageDetection>;

/// The mean of the middle row below which a frame of plain capture holds a finger.
constexpr unsigned long kPlainThreshold = 240;

/// Makers by the number of their capture mode.
constexpr std::array<Strategy (*)(), 5> kMakers{
    []() -> Strategy { return std::make_unique<ClLiveDetection>(); },
    []() -> Strategy { return std::make_unique<ClPlainFingerDetection>(kPlainThreshold); },
    []() -> Strategy { return std::make_unique<ClRolledFingerLX1>(); },
    []() -> Strategy { return std::make_unique<ClFastPlainFingerDetection>(); },
    []() -> Strategy { return std::make_unique<ClPreviewDetection>(); },
};

}  // namespace

ClImageDetection* ClImageDetection::Create(eCaptureModeIDs mode) {
  return mode < kMakers.size() ? kMakers[mode]().release() : nullptr;
}

}  // namespace Osv::lx
