#pragma once

#include "detection/image_detection.h"

namespace Osv::lx {

/// Fast plain capture: keeps the darkest frame while a finger lies, and finishes with it when the
/// finger is lifted. One finger gives one image.
///
/// The first frame that is not wholly black is taken for the empty platen, for the life of the
/// strategy. A black first frame has then fixed the lowest sum already, at 0: no frame is darker
/// until the strategy is built anew. That is to stay so.
class ClFastPlainFingerDetection : public ClImageDetection {
 public:
  ClFastPlainFingerDetection() = default;

  /// Takes over what is known of the background and the count, but neither the kept frame nor its
  /// sum.
  ClFastPlainFingerDetection(const ClFastPlainFingerDetection& other);
  ClFastPlainFingerDetection& operator=(const ClFastPlainFingerDetection&) = delete;
  ~ClFastPlainFingerDetection() override = default;

  bool Detect(utilities::ClSimpleBitmap& in, utilities::ClSimpleBitmap& out) override;
  eCaptureModeIDs Type() const override { return eCaptureFastPlain; }

  /// Begins with `bitmap` as the kept frame; does nothing the second time.
  void Initialize(const utilities::ClSimpleBitmap& bitmap);

  /// Takes the background from `bitmap` as long as none is known.
  void InitializeGray(const utilities::ClSimpleBitmap& bitmap);

  /// True while the whole image is dark enough for a finger.
  bool IsFinger(const utilities::ClSimpleBitmap& bitmap);

  /// Makes ready for the next finger, which has to be darker than the background and not darker
  /// than the last finger. The kept frame stays, and the background is never taken again.
  void Reset();

 protected:
  long m_nBackgroundSum = -1;         ///< gray sum of the empty platen; 0 and below: not known yet
  bool m_bFinger = false;             ///< cleared by `Reset`, otherwise not used
  bool m_bInitialized = false;        ///< set once, by `Initialize`
  long m_nFrames = 0;                 ///< how often this finger replaced the kept frame
  unsigned long m_nLowestSum = 0;     ///< gray sum of the kept frame
  utilities::ClSimpleBitmap m_Frame;  ///< the kept frame: the darkest so far
};

}  // namespace Osv::lx
