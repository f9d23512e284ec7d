#pragma once

#include <vector>

#include "detection/image_detection.h"

namespace Osv::lx {

/// Rolled capture: assembles the print column by column. Each column of the composite is the one of
/// the frame in which it was darkest, in whatever direction the finger rolls; lifting the finger
/// finishes it. Nothing is cropped or checked for completeness.
///
/// The background is the first frame with a mean above 220, and again the first such frame after a
/// delivery. A frame that starts a roll is not merged.
class ClRolledFingerLX1 : public ClImageDetection {
 public:
  ClRolledFingerLX1() = default;

  /// Takes over how far the roll is and its gray limits, but neither minima nor composite: a copy
  /// made in the middle of a roll has none, and delivers an empty image.
  ClRolledFingerLX1(const ClRolledFingerLX1& other);
  ClRolledFingerLX1& operator=(const ClRolledFingerLX1&) = delete;
  ~ClRolledFingerLX1() override = default;

  /// On true `out` is the finished print; on false it is the composite while a finger rolls,
  /// otherwise the frame.
  bool Detect(utilities::ClSimpleBitmap& in, utilities::ClSimpleBitmap& out) override;
  eCaptureModeIDs Type() const override { return eCaptureRolled; }

  /// A new copy, which the caller owns.
  [[nodiscard]] virtual ClRolledFingerLX1* clone() const;

  /// The sum of a column over all rows; 0 for a column that the image doesn't have.
  unsigned long ColumnSum(const utilities::ClSimpleBitmap& bitmap, unsigned long column) const;

  /// Copies a column to the same place in the target, with the source's height and stride for both
  /// images. What would lie behind the target's last row is left out.
  void CpyColumn(const utilities::ClSimpleBitmap& source, utilities::ClSimpleBitmap& target,
                 unsigned long column);

  /// Takes the background from `frame` if none is known and the frame is bright enough.
  void Initialize(const utilities::ClSimpleBitmap& frame);

  /// Makes ready for the next background. Minima and composite stay until then.
  void Reset();

 protected:
  bool Roll(const utilities::ClSimpleBitmap& in);

  unsigned long m_nReset = 255;       ///< what `Reset` makes of the lower limit
  unsigned long m_nReserved = 5;      ///< 1 in a copy; no operation reads it
  bool m_bInitialized = false;        ///< a background has been taken
  bool m_bRolling = false;            ///< a finger is on the platen
  unsigned long m_nLowerLimit = 255;  ///< the background's lowest sum less 5 percent; never read
  unsigned long m_nBackgroundGray = 255;  ///< mean of the latest frame `Initialize` looked at
  std::vector<unsigned long> m_Minima;    ///< the lowest sum of each column so far
  utilities::ClSimpleBitmap m_Image;      ///< the composite

 private:
  void Merge(const utilities::ClSimpleBitmap& in);

  /// The sums of the frame in hand; a member so that frames allocate nothing for them.
  std::vector<unsigned long> m_Sums;
};

}  // namespace Osv::lx
