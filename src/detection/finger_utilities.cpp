#include "detection/finger_utilities.h"

#include <algorithm>
#include <span>

#include "detection/bitmap_utilities.h"

namespace Osv::lx {
namespace {

constexpr unsigned long kEdgeColumns = 30;
constexpr long kDarkerThanGray = 19;
constexpr double kBrightMean = 242.25;
constexpr double kBlockMetres = 0.00055;
constexpr double kRequiredShare = 0.2;
constexpr unsigned long kProbeRows = 3;
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

/// What the probe rows have shown so far; it runs on from row to row.
struct Contrast {
  unsigned long sum = 0;
  unsigned long blocks = 0;
};

void add_block(Contrast& contrast, std::span<const unsigned char> block) {
  int low = 255;
  int high = 0;
  for (const unsigned char pixel : block) {
    contrast.sum += pixel;
    // A pixel that lowers the low mark must not raise the high mark too.
    if (pixel < low) {
      low = pixel;
    } else {
      high = std::max<int>(high, pixel);
    }
  }
  if (high - low > kBlockContrast) {
    ++contrast.blocks;
  }
}

/// Adds the blocks of one row. The last block may run over the area's end, into the padding and the
/// next row, but not over the end of the image.
void add_row(Contrast& contrast, const utilities::ClSimpleBitmap& bitmap, unsigned long row,
             const Columns& columns, unsigned long block) {
  const std::span<const unsigned char> rest =
      std::span(bitmap.Pixel(), bitmap.PixelSize()).subspan(row * bitmap.BPRow());
  for (unsigned long from = columns.from; from < columns.to; from += block) {
    add_block(contrast, rest.subspan(from, std::min(block, rest.size() - from)));
  }
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
  const unsigned long distance = cut(bitmap.Height(), kProbeDistance);
  Contrast contrast;
  for (unsigned long probe = 1; probe <= kProbeRows; ++probe) {
    add_row(contrast, bitmap, probe * distance, columns, block);
    if (contrast.sum <= limit || contrast.blocks <= required) {
      return false;
    }
  }
  return true;
}

}  // namespace Osv::lx
