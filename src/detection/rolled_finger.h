#pragma once

#include <vector>

#include "detection/image_detection.h"

namespace Osv::lx {

/// A second rolled strategy, which only a direct construction makes: follows an edge that the
/// finger pushes from left to right, and takes from each frame the columns that the edge has
/// passed.
///
/// The first frame is the background, whatever it shows. The edge is the column at which the
/// running mean of row 0 is lowest, searched from where it was, and it is kept modulo 256 for each
/// row.
/// That row 0 decides for all rows, and that the edge wraps around on wider images, is to stay so.
class ClRolledFinger : public ClImageDetection {
 public:
  /// The columns that are measured; any other value has none.
  enum eDetectArea : unsigned int {
    eDetectFirst = 0,  ///< the first 50 columns
    eDetectLast = 1,   ///< the last 50 columns
    eDetectWhole = 2
  };

  static constexpr unsigned long m_cnDelta_Gray = 10;      ///< the fall that means a finger
  static constexpr unsigned long m_cnDetectRowCount = 50;  ///< columns, not rows, of a strip

  ClRolledFinger() = default;

  /// Takes over the flags only.
  ClRolledFinger(const ClRolledFinger& other);

  /// Takes over the flags but the spare one, and the strip's background; the rest stays.
  ClRolledFinger& operator=(const ClRolledFinger& other);
  ~ClRolledFinger() override = default;

  /// @param out gets the assembled image's pixels after every frame, as many bytes as it has room
  ///   for; it is not resized, so an empty one stays empty
  /// @return true when the finger has been lifted and the assembled image is finished
  bool Detect(utilities::ClSimpleBitmap& in, utilities::ClSimpleBitmap& out) override;
  eCaptureModeIDs Type() const override { return eCaptureRolled; }

  /// Takes the background from `frame` if none is known.
  void Initialize(const utilities::ClSimpleBitmap& frame);

  /// Makes the next frame the background. Profile and assembled image stay until then.
  void Uninitialize();

  /// The sum of an area divided by 50 times the height, cut towards zero. The divisor is that of a
  /// strip for the whole image too, so that its value is usually above 255. A row narrower than a
  /// strip counts whole.
  unsigned long Gray_Avarage(const utilities::ClSimpleBitmap& bitmap, eDetectArea area);

  /// True when the area measures more than 10 less than the background: its whole for the whole
  /// image, its first columns for any other area.
  bool IsFinger(const utilities::ClSimpleBitmap& bitmap, eDetectArea area);

  /// The mean of the first `count` bytes, cut towards zero; of none, the first byte.
  unsigned long LineAvarage(const unsigned char* line, unsigned long count);

  /// The column from `from` up to but excluding `to` at which `LineAvarage` is lowest, the last of
  /// equal ones; 0 when there is no such column.
  unsigned long LineRand(const unsigned char* line, unsigned long from, unsigned long to);

  /// Moves the edge of each row on from where it was. Each row gets the edge of row 0. A row
  /// without an entry in `previous` begins at the left; those without one in `next` are left out.
  void CalculateLineRand(const utilities::ClSimpleBitmap& bitmap,
                         const std::vector<unsigned char>& previous,
                         std::vector<unsigned char>& next);

  /// Copies the columns from `from` up to but excluding `to` of one row, with the source's stride
  /// for both images; what would lie behind the end of either is left out.
  void CopyBitmapRow(const utilities::ClSimpleBitmap& source, utilities::ClSimpleBitmap& target,
                     unsigned long row, unsigned long from, unsigned long to);

  /// Copies in each row what the edge has passed between two profiles.
  void BitmapProfilCopy(const utilities::ClSimpleBitmap& source, utilities::ClSimpleBitmap& target,
                        const std::vector<unsigned char>& previous,
                        const std::vector<unsigned char>& next);

 protected:
  bool m_bReserved = true;               ///< carried along; no operation reads it
  bool m_bInitialized = false;           ///< the background has been taken
  bool m_bRolling = false;               ///< a finger has been seen; frames are being merged
  unsigned long m_nBackgroundStrip = 0;  ///< the background's first columns
  unsigned long m_nBackgroundWhole = 0;  ///< the whole background
  std::vector<unsigned char> m_Profile;  ///< the edge of each row, modulo 256
  utilities::ClSimpleBitmap m_Image;     ///< the assembled image

 private:
  bool Follow(const utilities::ClSimpleBitmap& in);
};

}  // namespace Osv::lx
