#pragma once

#include "detection/image_detection.h"

namespace Osv::lx {

/// Triggered preview: no frame is ever finished.
class ClPreviewDetection : public ClImageDetection {
 public:
  /// Touches neither image.
  bool Detect(utilities::ClSimpleBitmap& in, utilities::ClSimpleBitmap& out) override;
  eCaptureModeIDs Type() const override { return eCapturePreview; }
};

}  // namespace Osv::lx
