#pragma once

#include "detection/image_detection.h"

namespace Osv::lx {

/// Live view: takes every frame for finished. The channel itself never asks it, since a live
/// capture has no finished images.
class ClLiveDetection : public ClImageDetection {
 public:
  bool Detect(utilities::ClSimpleBitmap& in, utilities::ClSimpleBitmap& out) override;
  eCaptureModeIDs Type() const override { return eCaptureLive; }
};

}  // namespace Osv::lx
