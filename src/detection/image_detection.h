#pragma once

#include "foundation/bitmap.h"
#include "ostrevanhvk3/enumerations.h"

/// @file
/// The strategy that judges each frame of a capture.

namespace Osv::lx {

/// Decides whether a frame completes a finger image. One strategy lives for one capture and is used
/// by its worker thread alone; strategies have no locks.
class ClImageDetection {
 public:
  ClImageDetection() = default;
  ClImageDetection(const ClImageDetection&) = default;
  ClImageDetection& operator=(const ClImageDetection&) = default;
  virtual ~ClImageDetection() = default;

  /// Judges one frame.
  /// @param in the current frame, 8-bit gray; stays as it is
  /// @param out empty on entry. On true the finished finger image, on false the working image, if
  ///   the strategy has one
  /// @return true when `out` is finished
  /// @throws CXMemoryAllocException when there is no memory for a copy, std::bad_alloc when there
  ///   is none for the strategy's own figures
  virtual bool Detect(utilities::ClSimpleBitmap& in, utilities::ClSimpleBitmap& out) = 0;

  /// The capture mode, which the client also gets beside a finished image.
  virtual eCaptureModeIDs Type() const = 0;

  /// A new strategy in its initial state, which the caller owns; null for a mode without one.
  [[nodiscard]] static ClImageDetection* Create(eCaptureModeIDs mode);
};

}  // namespace Osv::lx
