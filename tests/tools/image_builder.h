#pragma once

#include <cstring>
#include <vector>

#include "hvk3/image.h"

namespace hvk3::test {

/// Pixels per metre: 500 dots per inch.
struct Resolution {
  int x = 19685;
  int y = 19685;
};

/// An image as the plug-in delivers it: `level(x, y)` is the pixel in column x and row y from the
/// top.
template <class Level>
Image make_image(int width, int height, Level level, Resolution resolution = {}) {
  constexpr std::size_t kPalette = std::size_t{256} * 4;
  const std::size_t stride = (static_cast<std::size_t>(width) + 3) / 4 * 4;
  tagBITMAPINFOHEADER header = {};
  header.biSize = sizeof(header);
  header.biWidth = width;
  header.biHeight = height;
  header.biPlanes = 1;
  header.biBitCount = 8;
  header.biXPelsPerMeter = resolution.x;
  header.biYPelsPerMeter = resolution.y;
  std::vector<unsigned char> block(sizeof(header) + kPalette +
                                   stride * static_cast<std::size_t>(height));
  std::memcpy(block.data(), &header, sizeof(header));
  unsigned char* row = block.data() + block.size() - stride;
  for (int y = 0; y < height; ++y, row -= stride) {
    for (int x = 0; x < width; ++x) {
      row[x] = static_cast<unsigned char>(level(x, y));
    }
  }
  return Image(block.data());
}

/// An image of one gray level.
inline Image make_gray_image(int width, int height, int level, Resolution resolution = {}) {
  return make_image(
      width, height, [level](int, int) { return level; }, resolution);
}

}  // namespace hvk3::test
