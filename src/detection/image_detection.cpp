#include "detection/image_detection.h"

#include <array>
#include <memory>

#include "detection/fast_plain_finger_detection.h"
#include "detection/live_detection.h"
#include "detection/plain_finger_detection.h"
#include "detection/preview_detection.h"

namespace Osv::lx {
namespace {

using Strategy = std::unique_ptr<ClImageDetection>;

/// The mean of the middle row below which a frame of plain capture holds a finger.
constexpr unsigned long kPlainThreshold = 240;

/// Makers by the number of their capture mode; null where no strategy exists.
constexpr std::array<Strategy (*)(), 5> kMakers{
    []() -> Strategy { return std::make_unique<ClLiveDetection>(); },
    []() -> Strategy { return std::make_unique<ClPlainFingerDetection>(kPlainThreshold); },
    nullptr,
    []() -> Strategy { return std::make_unique<ClFastPlainFingerDetection>(); },
    []() -> Strategy { return std::make_unique<ClPreviewDetection>(); },
};

}  // namespace

ClImageDetection* ClImageDetection::Create(eCaptureModeIDs mode) {
  const auto make = mode < kMakers.size() ? kMakers[mode] : nullptr;
  return make == nullptr ? nullptr : make().release();
}

}  // namespace Osv::lx
