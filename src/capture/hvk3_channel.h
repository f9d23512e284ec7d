#pragma once

#include "capture/capture_channel.h"

namespace Osv::lx {

/// The channel of this family of scanners: frames reach the client as the driver made them.
class ClOstrevanHVK3Channel : public ClFrameGrabberChannel {
 public:
  bool DoImageProcessing() const override { return false; }
};

}  // namespace Osv::lx
