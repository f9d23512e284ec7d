#pragma once

#include "detection/bitmap_utilities.h"
#include "detection/image_detection.h"

namespace example {

/// One image for each finger: of the frame with which the finger has come to rest. The next image
/// comes with the next finger.
class SteadyFinger : public Osv::lx::ClImageDetection {
 public:
  bool Detect(Osv::utilities::ClSimpleBitmap& in, Osv::utilities::ClSimpleBitmap& out) override {
    const unsigned long level = Osv::lx::ClBitmapUtilities::Gray_Avarage(in);
    m_nSteady = is_finger(level) && is_near(level, m_nLevel) ? m_nSteady + 1 : 0;
    m_nLevel = level;
    if (m_nSteady != kSteadyFrames) {
      return false;
    }
    out = in;
    return true;
  }

  eCaptureModeIDs Type() const override { return eCapturePlain; }

 private:
  static constexpr unsigned long kPlatenLevel = 240;  ///< of a frame's mean: an empty platen
  static constexpr unsigned long kTolerance = 1;      ///< of the mean, from frame to frame
  static constexpr unsigned long kSteadyFrames = 3;

  static bool is_finger(unsigned long level) { return level < kPlatenLevel; }
  static bool is_near(unsigned long one, unsigned long other) {
    return one <= other + kTolerance && other <= one + kTolerance;
  }

  unsigned long m_nLevel = 0;   ///< of the frame before
  unsigned long m_nSteady = 0;  ///< frames of a finger that were near the frame before
};

}  // namespace example
