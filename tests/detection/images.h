#pragma once

#include <cstring>
#include <random>
#include <span>

#include "foundation/bitmap.h"

/// @file
/// Small 8-bit gray images for tests.

namespace Osv::test {

/// An image of one gray level, with padding of another, so that a sum over the padding shows.
inline utilities::ClSimpleBitmap gray_image(unsigned long width, unsigned long height,
                                            unsigned char level, unsigned char padding = 77) {
  utilities::ClSimpleBitmap image;
  image.Create(width, height, 8, 0);
  for (unsigned long y = 0; y < height; ++y) {
    unsigned char* const row = image.Pixel() + y * image.BPRow();
    std::memset(row, padding, image.BPRow());
    std::memset(row, level, width);
  }
  return image;
}

/// The pixels of a row, without padding.
inline std::span<unsigned char> row_of(utilities::ClSimpleBitmap& image, unsigned long y) {
  return {image.Pixel() + y * image.BPRow(), image.Width()};
}

inline void fill_row(utilities::ClSimpleBitmap& image, unsigned long y, unsigned char level) {
  std::memset(row_of(image, y).data(), level, image.Width());
}

/// An image of noise, its padding included.
inline utilities::ClSimpleBitmap noise_image(unsigned long width, unsigned long height,
                                             unsigned int seed) {
  utilities::ClSimpleBitmap image;
  image.Create(width, height, 8, 0);
  std::mt19937 generator(seed);
  for (unsigned char& byte : std::span(image.Pixel(), image.PixelSize())) {
    byte = static_cast<unsigned char>(generator());
  }
  return image;
}

inline bool same_block(const utilities::ClSimpleBitmap& a, const utilities::ClSimpleBitmap& b) {
  return a.FullSize() == b.FullSize() && std::memcmp(a.BI(), b.BI(), a.FullSize()) == 0;
}

}  // namespace Osv::test
