#pragma once

#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "foundation/bitmap.h"

/// @file
/// Pixels read and written bit by bit, as slowly and plainly as can be, to compare with.

namespace Osv::testing_support {

/// A mask as the pixel operations use it: where it begins and how many bits it has.
struct ReferenceMask {
  long position = 0;
  long length = 0;
};

inline ReferenceMask reference_mask(std::uint32_t mask) {
  ReferenceMask found;
  while (found.position < 32 && (mask >> found.position & 1) == 0) {
    ++found.position;
  }
  while (found.position + found.length < 32 && (mask >> (found.position + found.length) & 1) == 1) {
    ++found.length;
  }
  return found;
}

/// Word `index` behind the header.
inline std::uint32_t reference_word(const utilities::ClSimpleBitmap& bitmap, unsigned long index) {
  std::uint32_t word = 0;
  std::memcpy(&word, reinterpret_cast<const unsigned char*>(bitmap.BI()) + 40 + 4 * index, 4);
  return word;
}

/// The three masks with their common length.
inline std::vector<ReferenceMask> reference_masks(const utilities::ClSimpleBitmap& bitmap) {
  const bool masked = bitmap.BI()->biCompression == 3;
  const std::vector<std::uint32_t> defaults =
      bitmap.BitCount() == 16 ? std::vector<std::uint32_t>{31744, 992, 31}
                              : std::vector<std::uint32_t>{16711680, 65280, 255};
  std::vector<ReferenceMask> masks;
  long common = 32;
  for (unsigned long i = 0; i < 3; ++i) {
    masks.push_back(reference_mask(masked ? reference_word(bitmap, i) : defaults[i]));
    common = masks[i].length < common ? masks[i].length : common;
  }
  for (ReferenceMask& mask : masks) {
    mask.position += mask.length - common;
    mask.length = common;
  }
  return masks;
}

/// The bits of pixel (x, y) as one number, taken bit by bit. The first bit of a byte is its highest
/// one up to 8 bits per pixel; whole bytes stand lowest first.
inline std::uint64_t reference_number(const utilities::ClSimpleBitmap& bitmap, unsigned long x,
                                      unsigned long y) {
  const unsigned long bits = bitmap.BitCount();
  const unsigned char* const row = bitmap.Pixel() + y * bitmap.BPRow();
  std::uint64_t number = 0;
  for (unsigned long i = 0; i < bits; ++i) {
    const unsigned long bit = x * bits + i;
    if (bits <= 8) {
      number = number << 1 | (row[bit / 8] >> (7 - bit % 8) & 1U);
    } else {
      number |= static_cast<std::uint64_t>(row[bit / 8] >> (bit % 8) & 1U) << i;
    }
  }
  return number;
}

inline unsigned int reference_get(const utilities::ClSimpleBitmap& bitmap, unsigned long x,
                                  unsigned long y) {
  const std::uint64_t number = reference_number(bitmap, x, y);
  if (bitmap.BitCount() <= 8) {
    return reference_word(bitmap, number);
  }
  if (bitmap.BitCount() == 24) {
    return static_cast<unsigned int>(number);
  }
  const std::uint64_t value = number == 0 ? 0 : 1;
  unsigned int colour = 0;
  unsigned int shift = 0;
  for (const ReferenceMask& mask : reference_masks(bitmap)) {
    for (long bit = 0; bit < mask.length; ++bit) {
      colour |= static_cast<unsigned int>(value >> (mask.position + bit) & 1) << (shift + bit);
    }
    shift += 8;
  }
  return colour;
}

/// The number that setting a colour leaves in a pixel of 16 or 32 bits.
inline std::uint64_t reference_masked_number(const utilities::ClSimpleBitmap& bitmap,
                                             unsigned int colour) {
  std::uint64_t number = 0;
  for (const ReferenceMask& mask : reference_masks(bitmap)) {
    for (long bit = 0; bit < mask.length && bit < 8; ++bit) {
      number |= static_cast<std::uint64_t>(colour >> bit & 1) << (mask.position + bit);
    }
    colour >>= 8;
  }
  return number & ((std::uint64_t{1} << bitmap.BitCount()) - 1);
}

inline void fill_randomly(utilities::ClSimpleBitmap& bitmap, std::mt19937& random) {
  for (unsigned long i = 0; i < bitmap.PixelSize(); ++i) {
    bitmap.Pixel()[i] = static_cast<unsigned char>(random());
  }
}

/// All bytes of the pixel rows.
inline std::vector<unsigned char> pixels(const utilities::ClSimpleBitmap& bitmap) {
  return {bitmap.Pixel(), bitmap.Pixel() + bitmap.PixelSize()};
}

}  // namespace Osv::testing_support
