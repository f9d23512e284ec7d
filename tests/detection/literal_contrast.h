#pragma once

#include "foundation/bitmap.h"

/// @file
/// The contrast test told once more, row by row and pixel by pixel, to compare with.

namespace Osv::test {

/// For images of at least 30 columns in which no block runs over the end.
inline bool literal_contrast_test(const utilities::ClSimpleBitmap& image, unsigned long area) {
  const unsigned long width = image.Width();
  const unsigned long first = area == 0 ? width - 30 : 0;
  const unsigned long end = area == 1 ? 30 : width;
  const unsigned long n = end - first;
  const auto block = static_cast<unsigned long>(static_cast<double>(image.YPels()) * 0.00055);
  const unsigned long blocks = n / block;
  const auto required = static_cast<unsigned long>(static_cast<double>(blocks) * 0.2);
  unsigned long sum = 0;
  unsigned long count = 0;
  bool result = true;
  for (unsigned long probe = 1; probe <= 3 && result; ++probe) {
    const unsigned char* const row = image.Pixel() + probe * (image.Height() / 4) * image.BPRow();
    for (unsigned long x = first; x < end; x += block) {
      int low = 255;
      int high = 0;
      for (unsigned long i = x; i < x + block; ++i) {
        sum += row[i];
        if (row[i] < low) {
          low = row[i];
        } else if (row[i] > high) {
          high = row[i];
        }
      }
      count += high - low > 62 ? 1 : 0;
    }
    result = sum > n * 24225 / 100 && count > required;
  }
  return result;
}

}  // namespace Osv::test
