#include "detection/finger_utilities.h"

#include <algorithm>
#include <span>

#include "detection/bitmap_utilities.h"
#include "detection/block_contrast.h"
#include "foundation/pixel_kernels.h"

namespace Osv::lx {
namespace {

constexpr unsigned long kEdgeColumns = 30;
constexpr long kDarkerThanGray = 19;
constexpr double kBrightMean = 242.25;
constexpr double kBlockMetres = 0.00055;
constexpr double kRequiredShare = 0.2;
constexpr double kProbeDistance = 0.25;
constexpr int kBlockContrast = 62;

/// A product as a whole number, cut towards zero.
unsigned long cut(unsigned long value, double factor) {
  return static_cast<unsigned long>(static_cast<double>(value) * factor);
}

/// The columns of an area and how many pixels its limits are reckoned for.
struct Columns {
  unsigned long from;
  unsigned long to;
  unsigned long count;
};

Columns columns_of(const utilities::ClSimpleBitmap& bitmap, ClFingerUtilities::eArea area) {
  const unsigned long width = bitmap.Width();
  const unsigned long edge = std::min(kEdgeColumns, width);
  switch (area) {
    case ClFingerUtilities::eAreaLast:
      return {width - edge, width, kEdgeColumns};
    case ClFingerUtilities::eAreaFirst:
      return {0, edge, kEdgeColumns};
    default:
      return {0, width, width};
  }
}

/// The pixels of the blocks that begin in the area. The last block may run over the area's end,
/// into the padding and the next row, but not over the end of the image.
std::span<const unsigned char> blocks_of(const utilities::ClSimpleBitmap& bitmap, unsigned long row,
                                         const Columns& columns, unsigned long block) {
  const std::span<const unsigned char> rest =
      std::span(bitmap.Pixel(), bitmap.PixelSize()).subspan(row * bitmap.BPRow() + columns.from);
  const unsigned long blocks = (columns.to - columns.from + block - 1) / block;
  return rest.first(std::min(blocks * block, rest.size()));
}

}  // namespace

bool darker_by_a_finger(unsigned long gray, unsigned long mean) {
  return static_cast<long>(gray - mean) > kDarkerThanGray;
}

bool ClFingerUtilities::IsFinger(const utilities::ClSimpleBitmap& bitmap, unsigned long gray,
                                 eArea area) {
  const Columns columns = columns_of(bitmap, area);
  return darker_by_a_finger(gray,
                            ClBitmapUtilities::Gray_Avarage(bitmap, columns.from, columns.to));
}

bool ClFingerUtilities::IsFinger(const utilities::ClSimpleBitmap& bitmap, eArea area) {
  const unsigned long block = cut(bitmap.YPels(), kBlockMetres);
  if (block == 0 || bitmap.Height() == 0) {
    return false;
  }
  const Columns columns = columns_of(bitmap, area);
  const unsigned long limit = cut(columns.count, kBrightMean);
  const unsigned long required = cut(columns.count / block, kRequiredShare);
  // Sum and number of blocks would run on through two more rows, at half and at three quarters of
  // the height. They only grow: what the first row has passed, they pass.
  const std::span<const unsigned char> blocks =
      blocks_of(bitmap, cut(bitmap.Height(), kProbeDistance), columns, block);
  return img::pixel_kernels().sum(blocks.data(), blocks.size()) > limit &&
         has_contrast(blocks, block, required, kBlockContrast);
}

}  // namespace Osv::lx
