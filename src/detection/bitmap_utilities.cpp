#include "detection/bitmap_utilities.h"

#include <cstdint>

namespace Osv::lx {
namespace {

/// What the mean of no pixels is: brighter than any image, so that nothing takes it for a finger.
constexpr unsigned long kMeanOfNothing = 1UL << 63;

std::uint64_t byte_sum(const unsigned char* bytes, unsigned long count) {
  std::uint64_t sum = 0;
  for (unsigned long i = 0; i < count; ++i) {
    sum += bytes[i];
  }
  return sum;
}

/// The sum of `count` columns from column `from` on.
std::uint64_t column_sum(const utilities::ClSimpleBitmap& bitmap, unsigned long from,
                         unsigned long count) {
  const unsigned long stride = bitmap.BPRow();
  const unsigned long height = bitmap.Height();
  std::uint64_t sum = 0;
  for (unsigned long row = 0; row < height; ++row) {
    sum += byte_sum(bitmap.Pixel() + row * stride + from, count);
  }
  return sum;
}

}  // namespace

unsigned long ClBitmapUtilities::Gray_Sum(const utilities::ClSimpleBitmap& bitmap) {
  return column_sum(bitmap, 0, bitmap.Width());
}

unsigned long ClBitmapUtilities::Gray_Avarage(const utilities::ClSimpleBitmap& bitmap,
                                              unsigned long from, unsigned long to) {
  const unsigned long height = bitmap.Height();
  if (height == 0 || from >= to) {
    return kMeanOfNothing;
  }
  const auto pixels = static_cast<double>(height) * static_cast<double>(to - from);
  return static_cast<unsigned long>(static_cast<double>(column_sum(bitmap, from, to - from)) /
                                    pixels);
}

unsigned long ClBitmapUtilities::Gray_Avarage(const utilities::ClSimpleBitmap& bitmap) {
  return Gray_Avarage(bitmap, 0, bitmap.Width());
}

}  // namespace Osv::lx
