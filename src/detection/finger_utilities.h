#pragma once

#include "foundation/bitmap.h"

namespace Osv::lx {

/// True when an area with the mean gray level `mean` is dark enough against `gray` for a finger: by
/// more than 19 levels.
bool darker_by_a_finger(unsigned long gray, unsigned long mean);

/// Tests for a finger in a part of an 8-bit gray image. A row narrower than the part counts whole.
class ClFingerUtilities {
 public:
  /// Which columns of each row are looked at; any other value means the whole row too.
  enum eArea : unsigned int {
    eAreaLast = 0,   ///< the last 30 columns
    eAreaFirst = 1,  ///< the first 30 columns
    eAreaWhole = 2
  };

  virtual ~ClFingerUtilities() = default;

  /// True when the area is, on average, darker than `gray` by a finger.
  static bool IsFinger(const utilities::ClSimpleBitmap& bitmap, unsigned long gray, eArea area);

  /// The contrast test: looks for the change of ridges and valleys in blocks of 0.55 mm along rows
  /// at a quarter, a half and three quarters of the height, of which the first decides. Takes the
  /// resolution from the bitmap; below 1819 pixels per metre the answer is false.
  static bool IsFinger(const utilities::ClSimpleBitmap& bitmap, eArea area);
};

}  // namespace Osv::lx
