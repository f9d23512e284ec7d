#include "foundation/image_functions.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

#include "foundation/exceptions.h"
#include "foundation/pixel_kernels.h"

namespace Osv::img {
namespace {

constexpr unsigned long kHeaderSize = sizeof(tagBITMAPINFOHEADER);
constexpr unsigned long kLargestPaletteDepth = 8;
constexpr unsigned long kLargestDepth = 32;
constexpr std::uint32_t kColourMasks = 3;

unsigned char* allocate(unsigned long size, bool use_malloc) {
  auto* const block = use_malloc ? static_cast<unsigned char*>(std::malloc(size))
                                 : new (std::nothrow) unsigned char[size];
  if (block == nullptr) {
    throw CXMemoryAllocException();
  }
  return block;
}

}  // namespace

unsigned long dpi2pels(unsigned long dpi) {
  return static_cast<unsigned long>(static_cast<double>(dpi) * 39.37);
}

unsigned long image_bpr(unsigned long width, unsigned long bits) {
  return (((width * bits + 7) >> 3) + 3) & ~3UL;
}

unsigned long bmp_bpr(const tagBITMAPINFOHEADER* bi) {
  return image_bpr(static_cast<unsigned long>(bi->biWidth), bi->biBitCount);
}

unsigned long bmp_pixel_size(unsigned long width, unsigned long height, unsigned long bits) {
  return image_bpr(width, bits) * height;
}

unsigned long bmp_size(unsigned long width, unsigned long height, unsigned long bits) {
  return (4UL << bits) + bmp_pixel_size(width, height, bits) + kHeaderSize;
}

unsigned long bmp_size(const tagBITMAPINFOHEADER* bi) {
  return bmp_bpr(bi) * static_cast<unsigned long>(bi->biHeight) + 4 * bmp_palette_size(bi) +
         kHeaderSize;
}

unsigned long bmp_palette_size(const tagBITMAPINFOHEADER* bi) {
  if (bi->biBitCount > kLargestPaletteDepth) {
    return bi->biClrUsed;
  }
  if (bi->biClrUsed == 0) {
    return 1UL << bi->biBitCount;
  }
  return bi->biCompression == kColourMasks ? 3 : bi->biClrUsed;
}

unsigned char* bmp_pixel(tagBITMAPINFOHEADER* bi) {
  return behind_header(bi) + 4 * bmp_palette_size(bi);
}

const unsigned char* bmp_pixel(const tagBITMAPINFOHEADER* bi) {
  return bmp_pixel(const_cast<tagBITMAPINFOHEADER*>(bi));
}

void image_invert(unsigned long width, unsigned long height, unsigned long bits,
                  unsigned char* pixels) {
  pixel_kernels().invert(pixels, bmp_pixel_size(width, height, bits));
}

tagBITMAPINFOHEADER* clip_bitmap(const tagBITMAPINFOHEADER* /*bi*/, unsigned long /*x*/,
                                 unsigned long /*y*/, unsigned long /*width*/,
                                 unsigned long /*height*/, unsigned long /*xpels*/,
                                 unsigned long /*ypels*/, bool /*use_malloc*/) {
  return nullptr;
}

void fill_image_data(unsigned char* dst, const unsigned char* src, unsigned long width,
                     unsigned long height, unsigned long bits) {
  const unsigned long stride = image_bpr(width, bits);
  const unsigned long bytes = std::min(width, stride);  // below 8 bits a row is shorter
  for (unsigned long row = 0; row < height && bytes != 0; ++row) {
    std::memcpy(dst + row * stride, src + (height - 1 - row) * width, bytes);
  }
}

unsigned char* create_bmp_copy(const tagBITMAPINFOHEADER* bi, bool use_malloc) {
  const unsigned long size = bmp_size(bi);
  unsigned char* const copy = allocate(size, use_malloc);
  std::memcpy(copy, bi, size);
  return copy;
}

unsigned char* create_bmp(unsigned long width, unsigned long height, unsigned long bits,
                          unsigned long xpels, unsigned long ypels, const unsigned char* data,
                          bool use_malloc) {
  check_block(width, height, bits, 0);
  if (bits > kLargestDepth) {
    throw CXMemoryAllocException();  // the palette that `bmp_size` counts would overflow
  }
  unsigned char* const block = allocate(bmp_size(width, height, bits), use_malloc);
  auto* const bi = reinterpret_cast<tagBITMAPINFOHEADER*>(block);
  fill_header(bi, width, height, bits, 0);
  bi->biXPelsPerMeter = static_cast<std::int32_t>(xpels);
  bi->biYPelsPerMeter = static_cast<std::int32_t>(ypels);
  fill_gray_ramp(bi, bits);
  if (data != nullptr) {
    std::memcpy(bmp_pixel(bi), data, bmp_pixel_size(width, height, bits));
  }
  return block;
}

void check_block(unsigned long width, unsigned long height, unsigned long bits,
                 unsigned long compression) {
  constexpr unsigned long kLargestSide = std::numeric_limits<std::int32_t>::max();
  constexpr unsigned long kLargest32 = std::numeric_limits<std::uint32_t>::max();
  if (width > kLargestSide || height > kLargestSide ||
      bits > std::numeric_limits<std::uint16_t>::max() || compression > kLargest32) {
    throw CXMemoryAllocException();
  }
  unsigned long pixels = 0;
  if (__builtin_mul_overflow(image_bpr(width, bits), height, &pixels) || pixels > kLargest32) {
    throw CXMemoryAllocException();
  }
}

void fill_header(tagBITMAPINFOHEADER* bi, unsigned long width, unsigned long height,
                 unsigned long bits, unsigned long compression) {
  *bi = tagBITMAPINFOHEADER{};
  bi->biSize = kHeaderSize;
  bi->biWidth = static_cast<std::int32_t>(width);
  bi->biHeight = static_cast<std::int32_t>(height);
  bi->biPlanes = 1;
  bi->biBitCount = static_cast<std::uint16_t>(bits);
  bi->biCompression = static_cast<std::uint32_t>(compression);
  bi->biSizeImage = static_cast<std::uint32_t>(bmp_pixel_size(width, height, bits));
}

void fill_gray_ramp(tagBITMAPINFOHEADER* bi, unsigned long bits) {
  if (bits == 0 || bits > kLargestPaletteDepth) {
    return;
  }
  const std::uint32_t entries = 1U << bits;
  const std::uint32_t step = 255 / (entries - 1);
  auto* const palette = reinterpret_cast<std::uint32_t*>(behind_header(bi));
  for (std::uint32_t entry = 0; entry < entries; ++entry) {
    palette[entry] = entry * step * 0x010101U;
  }
}

bool all_zero(const unsigned char* bytes, std::size_t size) {
  // Each byte equals the one before it; the library compares in the machine's widest vectors.
  return size == 0 || (bytes[0] == 0 && std::memcmp(bytes, bytes + 1, size - 1) == 0);
}

}  // namespace Osv::img
