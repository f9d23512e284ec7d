#pragma once

#include "foundation/bitmap.h"

/// @file
/// The scanner as a capture channel sees it.

namespace Osv::lx {

class ClFrameGrabberChannel;

/// What a driver offers to the channels. The worker thread of a channel makes these calls. Up to
/// the last pass any of them may throw, which ends the capture with one error callback, or only the
/// pass if it is a warning. The calls that end a capture must not: nobody is left to tell.
class ClFramegrabberSDK {
 public:
  ClFramegrabberSDK() = default;
  ClFramegrabberSDK(const ClFramegrabberSDK&) = delete;
  ClFramegrabberSDK& operator=(const ClFramegrabberSDK&) = delete;
  virtual ~ClFramegrabberSDK() = default;

  /// Makes the scanner ready for a capture that begins. The result is ignored.
  /// @throws any of the family on failure
  virtual unsigned long InitializeSDK(ClFrameGrabberChannel& /*channel*/) { return 0; }

  /// Undoes it when the capture has ended, also one that never got as far.
  virtual void UninitializeSDK(ClFrameGrabberChannel& /*channel*/) {}

  /// Makes the channel the one being acquired and sizes `bitmap` for its frames. The result is
  /// ignored.
  virtual unsigned long SetActiveChannel(ClFrameGrabberChannel& /*channel*/,
                                         utilities::ClSimpleBitmap& /*bitmap*/) {
    return 0;
  }

  /// Fills `bitmap` with the next frame, blocking as long as that takes.
  virtual void GetLiveBitmap(ClFrameGrabberChannel& /*channel*/,
                             utilities::ClSimpleBitmap& /*bitmap*/) {}

  /// For scanners that detect by themselves.
  /// @return true when `bitmap` holds a finger
  virtual bool WaitForPlainFinger(ClFrameGrabberChannel& /*channel*/,
                                  utilities::ClSimpleBitmap& /*bitmap*/) {
    return false;
  }

  /// Starts acquisition, after each `SetActiveChannel` of the worker.
  virtual void StartLiveCapturing(ClFrameGrabberChannel& /*channel*/) {}

  /// Ends acquisition, also one that never began.
  virtual void StopLiveCapturing(ClFrameGrabberChannel& /*channel*/) {}

  /// True when the channel must be made active again. Asked in each pass.
  virtual bool IsDirty(ClFrameGrabberChannel& channel) = 0;

  /// True when the scanner detects plain fingers by itself.
  virtual bool HasSelfDetection(ClFrameGrabberChannel& /*channel*/) { return false; }

  /// Enters the section of one pass, which the client's image callbacks are part of. The result is
  /// ignored.
  virtual bool Lock() { return true; }

  /// Leaves it.
  virtual void UnLock() {}

  /// Fills `bitmap` with a triggered image.
  virtual void TriggerImage(ClFrameGrabberChannel& /*channel*/,
                            utilities::ClSimpleBitmap& /*bitmap*/) {}

  /// Told when freezing starts and when it ends. A capture that stops while frozen is not told the
  /// end.
  virtual void FreezeSDK(ClFrameGrabberChannel& channel, bool freeze) = 0;

  /// True while frames must not reach detection.
  virtual bool SupressFingerDetection() const { return false; }
};

}  // namespace Osv::lx
