#include "libraries/image.h"

#include <cstdint>

namespace Osv::simulator {

std::optional<ImageIn> read_bitmap(const tagBITMAPINFOHEADER* bitmap, unsigned long size) {
  constexpr std::uint32_t kPalette = 256;
  constexpr int kDepth = 8;
  constexpr int kLargestSide = 1 << 14;
  if (bitmap == nullptr || size < sizeof(*bitmap) || bitmap->biSize != sizeof(*bitmap) ||
      bitmap->biBitCount != kDepth || bitmap->biCompression != 0 || bitmap->biWidth < 1 ||
      bitmap->biHeight < 1 || bitmap->biWidth > kLargestSide || bitmap->biHeight > kLargestSide ||
      bitmap->biClrUsed > kPalette) {
    return std::nullopt;
  }
  const std::size_t entries = bitmap->biClrUsed == 0 ? kPalette : bitmap->biClrUsed;
  const std::size_t head = sizeof(*bitmap) + sizeof(std::uint32_t) * entries;
  const auto width = static_cast<std::size_t>(bitmap->biWidth);
  const std::size_t stride = (width + 3) / 4 * 4;
  if (size < head + stride * static_cast<std::size_t>(bitmap->biHeight)) {
    return std::nullopt;
  }
  return ImageIn{bitmap->biWidth, bitmap->biHeight, stride,
                 reinterpret_cast<const unsigned char*>(bitmap) + head};
}

}  // namespace Osv::simulator
