#include "detection/bitmap_utilities.h"

#include "foundation/pixel_kernels.h"

namespace Osv::lx {
namespace {

constexpr unsigned long kMeanOfNothing = 1UL << 63;

}  // namespace

std::uint64_t byte_sum(std::span<const unsigned char> bytes) {
  return img::pixel_kernels().sum(bytes.data(), bytes.size());
}

std::uint64_t column_sum(const utilities::ClSimpleBitmap& bitmap, unsigned long from,
                         unsigned long count) {
  const unsigned long stride = bitmap.BPRow();
  if (count == stride) {
    return byte_sum({bitmap.Pixel(), bitmap.PixelSize()});
  }
  const auto sum_of = img::pixel_kernels().sum;
  const unsigned long height = bitmap.Height();
  std::uint64_t sum = 0;
  for (unsigned long row = 0; row < height; ++row) {
    sum += sum_of(bitmap.Pixel() + row * stride + from, count);
  }
  return sum;
}

unsigned long gray_mean(std::uint64_t sum, unsigned long rows, unsigned long columns) {
  if (rows == 0 || columns == 0) {
    return kMeanOfNothing;
  }
  const auto pixels = static_cast<double>(rows) * static_cast<double>(columns);
  return static_cast<unsigned long>(static_cast<double>(sum) / pixels);
}

unsigned long ClBitmapUtilities::Gray_Sum(const utilities::ClSimpleBitmap& bitmap) {
  return column_sum(bitmap, 0, bitmap.Width());
}

unsigned long ClBitmapUtilities::Gray_Avarage(const utilities::ClSimpleBitmap& bitmap,
                                              unsigned long from, unsigned long to) {
  const unsigned long columns = from < to ? to - from : 0;
  return gray_mean(column_sum(bitmap, from, columns), bitmap.Height(), columns);
}

unsigned long ClBitmapUtilities::Gray_Avarage(const utilities::ClSimpleBitmap& bitmap) {
  return Gray_Avarage(bitmap, 0, bitmap.Width());
}

}  // namespace Osv::lx
