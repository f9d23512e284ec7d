#pragma once

#include "detection/image_detection.h"

namespace Osv::lx {

/// Plain capture: judges each frame alone, from its middle row. No memory between frames, so every
/// frame that passes is a finished image.
class ClPlainFingerDetection : public ClImageDetection {
 public:
  /// @param threshold a finger is there while the mean of the middle row is below it; only its low
  ///   8 bits count
  explicit ClPlainFingerDetection(unsigned long threshold) : m_nThreshold(threshold) {}

  /// A frame whose middle row is wholly black is never a finger. `out` becomes `in` either way.
  bool Detect(utilities::ClSimpleBitmap& in, utilities::ClSimpleBitmap& out) override;
  eCaptureModeIDs Type() const override { return eCapturePlain; }

  /// True when every pixel of the middle row is 0, also for a bitmap without rows.
  bool BlackImage(utilities::ClSimpleBitmap& bitmap) const;

  /// Compares the sum of a row with what `width` pixels at the threshold would give.
  /// @param line a row of `width` bytes; an odd width takes in the byte behind its last pixel, so
  ///   the row needs its padding
  /// @param sum out: the sum
  /// @return true when the sum is below the limit
  bool LineDetect(const unsigned char* line, unsigned long width, unsigned long& sum) const;

 protected:
  unsigned long m_nReserved = 0;  ///< carried along; no operation reads it
  unsigned long m_nThreshold;
};

}  // namespace Osv::lx
