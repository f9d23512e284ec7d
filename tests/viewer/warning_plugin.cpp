#include "boundary/dummy_framegrabber.h"
#include "ostrevanhvk3/exports.h"

namespace Osv::lx {
namespace {

/// Has a scanner that gives no image, and warns as soon as capture begins.
class ClWarningFramegrabber : public ClDummyFramegrabber {
 public:
  ClWarningFramegrabber() : ClDummyFramegrabber(0, nullptr) {}

  unsigned long AvailableDevices(DeviceInfo* list, unsigned long& count) override {
    const bool fits = list != nullptr && count > 0;
    count = 1;
    if (!fits) {
      return BoundaryResult(error_number::BufferTooSmall);
    }
    *list = {"WARNING1", "", 0};
    return 0;
  }

  unsigned long GetFGProperty(ePropertyIDs /*property*/, unsigned int& value) override {
    value = 0;
    return 0;
  }

  unsigned long StartCapture(int handle, unsigned int channel, eCaptureModeIDs /*mode*/,
                             ClLiveImageCallback /*live*/, ClDetectedFingerCallback /*finger*/,
                             ClErrorCallback /*error*/, ClWarningCallback warning,
                             void* user) override {
    warning(handle, channel, "the platen is dirty", user);
    return 0;
  }
};

}  // namespace
}  // namespace Osv::lx

Osv::lx::ClFramegrabber* GetFrameGrabber() {
  static Osv::lx::ClWarningFramegrabber grabber;
  return &grabber;
}

void DestroyFrameGrabber() {}

unsigned long FGCurrentFrameInfo(unsigned long /*handle*/, unsigned long /*reserved*/,
                                 unsigned int /*type*/, void* /*info*/) {
  return 0;
}
