#include "detection/block_contrast.h"

#include <algorithm>
#include <cstddef>

#include <emmintrin.h>

/// @file
/// The high mark can be told without the low one: it is the highest of the pixels that are not
/// darker than the one before them, with 255 before the first. None of those is below the low mark.
/// And of the pixels that are not below it the highest is among them: were one before it brighter,
/// that one would have lowered the mark, and so would this one.

namespace Osv::lx {
namespace {

/// Blocks that are looked at together before they are looked at one by one.
constexpr std::size_t kTogether = 16;

constexpr unsigned char kWhite = 255;
constexpr std::size_t kVector = sizeof(__m128i);
constexpr std::size_t kHalf = kVector / 2;

/// For blocks that no half of a vector fits into.
int contrast_of_few(std::span<const unsigned char> block) {
  int low = kWhite;
  int high = 0;
  int before = kWhite;
  for (const int pixel : block) {
    low = std::min(low, pixel);
    high = std::max(high, pixel < before ? 0 : pixel);
    before = pixel;
  }
  return high - low;
}

__m128i vector_at(const unsigned char* pixels) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels));
}

/// Eight pixels, in the lower half.
__m128i half_at(const unsigned char* pixels) {
  return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(pixels));
}

/// The pixels that are not darker than those before them, and 0 for the others.
__m128i raising(__m128i pixels, __m128i before) {
  return _mm_and_si128(pixels, _mm_cmpeq_epi8(_mm_max_epu8(pixels, before), pixels));
}

/// The smallest byte of `low` less the largest of `high`, both of them the other way round.
int difference(__m128i high, __m128i low) {
  const __m128i inverse = _mm_xor_si128(high, _mm_set1_epi8(-1));
  __m128i least = _mm_min_epu8(_mm_unpacklo_epi64(low, inverse), _mm_unpackhi_epi64(low, inverse));
  least = _mm_min_epu8(least, _mm_srli_epi64(least, 32));
  least = _mm_min_epu8(least, _mm_srli_epi64(least, 16));
  least = _mm_min_epu8(least, _mm_srli_epi64(least, 8));
  const int least_of_low = _mm_cvtsi128_si32(least) & kWhite;
  const int least_of_inverse = _mm_extract_epi16(least, kHalf / 2) & kWhite;
  return kWhite - least_of_inverse - least_of_low;
}

/// Takes so many pixels from the front, or all that are left.
std::span<const unsigned char> take(std::span<const unsigned char>& pixels, std::size_t size) {
  const std::span<const unsigned char> taken = pixels.first(std::min(size, pixels.size()));
  pixels = pixels.subspan(taken.size());
  return taken;
}

std::size_t count_blocks(std::span<const unsigned char> pixels, std::size_t block, int contrast) {
  std::size_t found = 0;
  while (!pixels.empty()) {
    found += contrast_of(take(pixels, block)) > contrast ? 1 : 0;
  }
  return found;
}

}  // namespace

/// Vectors may overlap, as no pixel counts more for being seen twice: first both ends together,
/// then what is between them.
int contrast_of(std::span<const unsigned char> block) {
  if (block.size() <= kHalf) {
    return contrast_of_few(block);
  }
  const unsigned char* const pixels = block.data();
  const std::size_t last = block.size() - kHalf;
  const __m128i begin = half_at(pixels);
  const __m128i before_begin = _mm_or_si128(_mm_slli_epi64(begin, 8), _mm_cvtsi32_si128(kWhite));
  __m128i low = _mm_unpacklo_epi64(begin, half_at(pixels + last));
  __m128i high = raising(low, _mm_unpacklo_epi64(before_begin, half_at(pixels + last - 1)));
  for (std::size_t i = kHalf; i < last; i += kVector) {
    const std::size_t from = std::min(i, block.size() - kVector);
    const __m128i between = vector_at(pixels + from);
    low = _mm_min_epu8(low, between);
    high = _mm_max_epu8(high, raising(between, vector_at(pixels + from - 1)));
  }
  return difference(high, low);
}

/// What raises the high mark of a block raises that of a longer one too: where many blocks together
/// have no contrast, none of them has.
bool has_contrast(std::span<const unsigned char> pixels, std::size_t block, std::size_t count,
                  int contrast) {
  std::size_t found = 0;
  while (!pixels.empty() && found <= count) {
    const std::span<const unsigned char> blocks = take(pixels, kTogether * block);
    if (contrast_of(blocks) > contrast) {
      found += count_blocks(blocks, block, contrast);
    }
  }
  return found > count;
}

}  // namespace Osv::lx
