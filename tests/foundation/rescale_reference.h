#pragma once

#include <algorithm>

#include "foundation/bitmap.h"

/// @file
/// Rescaling pixel by pixel, as slowly and plainly as can be, to compare with.

namespace Osv::testing_support {

/// The low 8 bits of a pixel; columns and rows behind the last give the last.
inline double clamped_gray(const utilities::ClSimpleBitmap& source, unsigned long x,
                           unsigned long y) {
  return source.GetPixel(std::min(x, source.Width() - 1), std::min(y, source.Height() - 1)) & 255;
}

/// One pixel of the bilinear mode, as plainly as can be.
inline unsigned int reference_gray(const utilities::ClSimpleBitmap& source,
                                   const utilities::ClSimpleBitmap& target, unsigned long x,
                                   unsigned long y) {
  const double sx =
      static_cast<double>(source.Width() - 1) / static_cast<double>(target.Width() - 1);
  const double sy =
      static_cast<double>(source.Height() - 1) / static_cast<double>(target.Height() - 1);
  const double fy = static_cast<double>(y) * sy;
  const auto y0 = static_cast<unsigned long>(fy);
  const unsigned long y1 = y0 == target.Height() - 1 ? y0 : y0 + 1;
  const double fx = static_cast<double>(x) * sx;
  const auto x0 = static_cast<unsigned long>(fx);
  const unsigned long x1 = x0 == target.Width() - 1 ? x0 : x0 + 1;
  const double wx0 = static_cast<double>(x1) - fx;
  const double wx1 = fx - static_cast<double>(x0);
  const double top = clamped_gray(source, x0, y0) * wx0 + clamped_gray(source, x1, y0) * wx1;
  const double bottom = clamped_gray(source, x0, y1) * wx0 + clamped_gray(source, x1, y1) * wx1;
  const double result =
      (static_cast<double>(y1) - fy) * top + (fy - static_cast<double>(y0)) * bottom;
  return static_cast<unsigned int>(static_cast<long>(result)) & 255;
}

inline utilities::ClSimpleBitmap reference_bilinear(const utilities::ClSimpleBitmap& source,
                                                    unsigned long width, unsigned long height) {
  utilities::ClSimpleBitmap target;
  target.Create(width, height, source.BitCount(), 0);
  target.SetBlack();
  for (unsigned long y = 0; y < height; ++y) {
    for (unsigned long x = 0; x < width; ++x) {
      target.SetPixel(x, y, reference_gray(source, target, x, y) * 65793);
    }
  }
  return target;
}

inline utilities::ClSimpleBitmap reference_double(const utilities::ClSimpleBitmap& source) {
  utilities::ClSimpleBitmap target;
  target.Create(2 * source.Width(), 2 * source.Height(), source.BitCount(), 0);
  target.SetBlack();
  for (unsigned long y = 0; y < target.Height(); ++y) {
    for (unsigned long i = 0; i < 2 * ((source.Width() * source.BitCount() + 7) / 8); ++i) {
      target.Pixel()[y * target.BPRow() + i] = source.Pixel()[y / 2 * source.BPRow() + i / 2];
    }
  }
  return target;
}

}  // namespace Osv::testing_support
