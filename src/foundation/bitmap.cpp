#include "foundation/bitmap.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <new>

#include "foundation/exceptions.h"
#include "foundation/image_functions.h"
#include "foundation/pixel_kernels.h"

namespace Osv::utilities {
namespace {

constexpr unsigned long kHeaderSize = sizeof(tagBITMAPINFOHEADER);
constexpr unsigned long kMaskBytesReserved = 12;
constexpr unsigned long kMaskBytesWritten = 24;
constexpr unsigned long kColourMasks = 3;
constexpr unsigned long kLargestPaletteDepth = 8;
constexpr unsigned int kNoColour = 4294967295U;

/// Where a mask lies within a pixel, and how many bits it has.
struct Mask {
  long position = 0;
  long length = 0;
};

Mask measure(std::uint32_t mask) {
  const long position = std::countr_zero(mask);
  return {position, mask == 0 ? 0L : long{std::countr_one(mask >> position)}};
}

/// The masks of a 16- or 32-bit block, cut to their common length by giving up low bits.
std::array<Mask, 3> common_masks(const ClSimpleBitmap& bitmap) {
  std::array<std::uint32_t, 3> words{16711680, 65280, 255};
  if (bitmap.BI()->biCompression == kColourMasks) {
    std::copy_n(bitmap.Palette(), words.size(), words.begin());
  } else if (bitmap.BitCount() == 16) {
    words = {31744, 992, 31};
  }
  std::array<Mask, 3> masks{};
  std::transform(words.begin(), words.end(), masks.begin(), measure);
  const long common = std::min({masks[0].length, masks[1].length, masks[2].length});
  for (Mask& mask : masks) {
    mask.position += mask.length - common;
    mask.length = common;
  }
  return masks;
}

std::uint64_t low_bits(std::uint64_t value, long count) {
  return value & ((std::uint64_t{1} << count) - 1);
}

unsigned int masked_colour(const std::array<Mask, 3>& masks, std::uint64_t value) {
  std::uint64_t colour = 0;
  for (unsigned int i = 0; i < masks.size(); ++i) {
    colour |= (low_bits(value >> masks[i].position, masks[i].length) & 255) << (8 * i);
  }
  return static_cast<unsigned int>(colour);
}

std::uint64_t masked_pixel(const std::array<Mask, 3>& masks, unsigned int colour) {
  std::uint64_t pixel = 0;
  for (unsigned int i = 0; i < masks.size(); ++i) {
    const std::uint64_t part = (colour >> (8 * i)) & 255;
    pixel |= low_bits(part, masks[i].length) << masks[i].position;
  }
  return pixel;
}

/// Shift of a palette index of `bits` bits within its byte; the leftmost pixel has the high bits.
unsigned int index_shift(unsigned long x, unsigned long bits) {
  return static_cast<unsigned int>(8 - bits - (x * bits) % 8);
}

bool has_palette_index(unsigned long bits) {
  return bits == 1 || bits == 2 || bits == 4 || bits == 8;
}

}  // namespace

std::unique_ptr<unsigned char[]> ClSimpleBitmap::NewBlock(unsigned long size) {
  std::unique_ptr<unsigned char[]> block(new (std::nothrow) unsigned char[size]);
  if (block == nullptr) {
    throw CXMemoryAllocException();
  }
  return block;
}

ClSimpleBitmap::ClSimpleBitmap(const ClSimpleBitmap& other) { Copy(other.BI()); }

ClSimpleBitmap& ClSimpleBitmap::operator=(const ClSimpleBitmap& other) {
  if (this != &other) {
    Copy(other.BI());
  }
  return *this;
}

void ClSimpleBitmap::Create(unsigned long width, unsigned long height, unsigned long bits,
                            unsigned long compression) {
  Clear();
  img::check_block(width, height, bits, compression);
  unsigned long size = kHeaderSize + img::bmp_pixel_size(width, height, bits);
  if (bits <= kLargestPaletteDepth) {
    size += 4UL << bits;
  } else if (compression == kColourMasks) {
    size += kMaskBytesReserved;
  }
  // The masks are written wider than what is reserved for them; a tiny image needs the slack.
  m_pBlock = NewBlock(std::max(size, kHeaderSize + kMaskBytesWritten));
  FillBI(BI(), width, height, bits, compression);
}

void ClSimpleBitmap::Copy(const tagBITMAPINFOHEADER* source) {
  if (source != nullptr && source == BI()) {
    return;
  }
  Clear();
  const unsigned long size = FullSize(source);
  if (size != 0) {
    std::unique_ptr<unsigned char[]> block = NewBlock(size);
    std::memcpy(block.get(), source, size);
    m_pBlock = std::move(block);
  }
}

void ClSimpleBitmap::Attach(tagBITMAPINFOHEADER* block) {
  m_pBlock.reset(reinterpret_cast<unsigned char*>(block));
}

tagBITMAPINFOHEADER* ClSimpleBitmap::BI() const {
  return reinterpret_cast<tagBITMAPINFOHEADER*>(m_pBlock.get());
}

unsigned long ClSimpleBitmap::Width() const {
  return Empty() ? 0 : static_cast<unsigned long>(BI()->biWidth);
}

unsigned long ClSimpleBitmap::Height() const {
  return Empty() ? 0 : static_cast<unsigned long>(BI()->biHeight);
}

unsigned long ClSimpleBitmap::BitCount() const { return Empty() ? 0 : BI()->biBitCount; }

unsigned long ClSimpleBitmap::XPels() const {
  return Empty() ? 0 : static_cast<unsigned long>(BI()->biXPelsPerMeter);
}

unsigned long ClSimpleBitmap::YPels() const {
  return Empty() ? 0 : static_cast<unsigned long>(BI()->biYPelsPerMeter);
}

unsigned long ClSimpleBitmap::BPRow() const { return Empty() ? 0 : BPRow(Width(), BitCount()); }

std::uint32_t* ClSimpleBitmap::Palette() const {
  return Empty() ? nullptr : reinterpret_cast<std::uint32_t*>(img::behind_header(BI()));
}

unsigned long ClSimpleBitmap::PalSize(const tagBITMAPINFOHEADER* bi) {
  if (bi == nullptr) {
    return 0;
  }
  if (bi->biBitCount > kLargestPaletteDepth) {
    return bi->biCompression == kColourMasks ? 3 : bi->biClrUsed;
  }
  return bi->biClrUsed != 0 ? bi->biClrUsed : 1UL << bi->biBitCount;
}

unsigned char* ClSimpleBitmap::Pixel(tagBITMAPINFOHEADER* bi) {
  return bi == nullptr ? nullptr : img::behind_header(bi) + 4 * PalSize(bi);
}

unsigned long ClSimpleBitmap::FullSize(const tagBITMAPINFOHEADER* bi) {
  return bi == nullptr ? 0
                       : img::bmp_bpr(bi) * static_cast<unsigned long>(bi->biHeight) +
                             4 * PalSize(bi) + kHeaderSize;
}

unsigned long ClSimpleBitmap::BPRow(unsigned long width, unsigned long bits) {
  return img::image_bpr(width, bits);
}

void ClSimpleBitmap::FillBI(tagBITMAPINFOHEADER* bi, unsigned long width, unsigned long height,
                            unsigned long bits, unsigned long compression) {
  if (bi == nullptr) {
    return;
  }
  img::fill_header(bi, width, height, bits, compression);
  img::fill_gray_ramp(bi, bits);
  if (compression == kColourMasks) {
    const std::array<std::uint64_t, 3> masks =
        bits <= 16 ? std::array<std::uint64_t, 3>{31, 992, 31744}
                   : std::array<std::uint64_t, 3>{255, 65280, 16711680};
    static_assert(sizeof(masks) == kMaskBytesWritten);
    std::memcpy(img::behind_header(bi), masks.data(), sizeof(masks));
  }
}

void ClSimpleBitmap::SetPels(unsigned long x, unsigned long y) {
  if (!Empty()) {
    BI()->biXPelsPerMeter = static_cast<std::int32_t>(x);
    BI()->biYPelsPerMeter = static_cast<std::int32_t>(y);
  }
}

void ClSimpleBitmap::SetResolution(unsigned long x, unsigned long y) {
  SetPels(img::dpi2pels(x), img::dpi2pels(y));
}

void ClSimpleBitmap::SetBlack() {
  if (!Empty()) {
    std::memset(Pixel(), 0, PixelSize());
  }
}

void ClSimpleBitmap::SetWhite() {
  if (!Empty()) {
    std::memset(Pixel(), 255, PixelSize());
  }
}

unsigned int ClSimpleBitmap::GetPixel(unsigned long x, unsigned long y) const {
  const unsigned long bits = BitCount();
  const unsigned char* const byte = Pixel() + y * BPRow() + x * bits / 8;
  if (has_palette_index(bits)) {
    const unsigned long index = low_bits(*byte >> index_shift(x, bits), static_cast<long>(bits));
    return index < PalSize() ? Palette()[index] : kNoColour;
  }
  if (bits == 24) {
    return byte[0] | static_cast<unsigned int>(byte[1]) << 8 |
           static_cast<unsigned int>(byte[2]) << 16;
  }
  if (bits == 16 || bits == 32) {
    const bool lit = std::any_of(byte, byte + bits / 8, [](unsigned char b) { return b != 0; });
    return masked_colour(common_masks(*this), lit ? 1 : 0);
  }
  return kNoColour;
}

void ClSimpleBitmap::SetPixel(unsigned long x, unsigned long y, unsigned int colour) {
  const unsigned long bits = BitCount();
  unsigned char* const byte = Pixel() + y * BPRow() + x * bits / 8;
  if (has_palette_index(bits)) {
    const std::uint32_t* const palette = Palette();
    const std::uint32_t* const end = palette + std::min(PalSize(), 1UL << bits);
    const std::uint32_t* const entry = std::find(palette, end, colour);
    if (entry != end) {
      const unsigned int shift = index_shift(x, bits);
      const unsigned int field = ((1U << bits) - 1) << shift;
      const auto index = static_cast<unsigned int>(entry - palette);
      *byte = static_cast<unsigned char>((*byte & ~field) | (index << shift));
    }
  } else if (bits == 24) {
    byte[0] = static_cast<unsigned char>(colour);
    byte[1] = static_cast<unsigned char>(colour >> 8);
    byte[2] = static_cast<unsigned char>(colour >> 16);
  } else if (bits == 16 || bits == 32) {
    const std::uint64_t pixel = masked_pixel(common_masks(*this), colour);
    std::memcpy(byte, &pixel, bits / 8);
  }
}

void ClSimpleBitmap::MaskData(long mask, long& position, long& length) const {
  const Mask measured = measure(static_cast<std::uint32_t>(mask));
  position = measured.position;
  length = measured.length;
}

void ClSimpleBitmap::FlipY() {
  if (!Empty()) {
    FlipY(Width(), Height(), BitCount(), Pixel());
  }
}

void ClSimpleBitmap::FlipY(unsigned long width, unsigned long height, unsigned long bits,
                           unsigned char* pixels) {
  img::pixel_kernels().flip(pixels, BPRow(width, bits), height);
}

void ClSimpleBitmap::Invert() {
  if (!Empty()) {
    Invert(Width(), Height(), BitCount(), Pixel());
  }
}

void ClSimpleBitmap::Invert(unsigned long width, unsigned long height, unsigned long bits,
                            unsigned char* pixels) {
  img::image_invert(width, height, bits, pixels);
}

std::unique_ptr<ClSimpleBitmap> ClSimpleBitmap::clip(unsigned long x, unsigned long y,
                                                     unsigned long width,
                                                     unsigned long height) const {
  if (Empty()) {
    return nullptr;
  }
  auto clipped = std::make_unique<ClSimpleBitmap>();
  clipped->Create(width, height, BitCount(), 0);
  const unsigned long stride = clipped->BPRow();
  for (unsigned long row = 0; row < height && stride != 0; ++row) {
    unsigned char* const out = clipped->Pixel() + row * stride;
    const unsigned long begin = std::min((y + row) * BPRow() + BitCount() / 8 * x, PixelSize());
    const unsigned long available = std::min(stride, PixelSize() - begin);
    std::memcpy(out, Pixel() + begin, available);
    std::memset(out + available, 0, stride - available);
  }
  return clipped;
}

}  // namespace Osv::utilities
