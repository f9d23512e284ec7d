#include "detection/bitmap_utilities.h"

#include <emmintrin.h>

#include <array>

namespace Osv::lx {
namespace {

constexpr unsigned long kMeanOfNothing = 1UL << 63;

constexpr unsigned long kVector = sizeof(__m128i);

/// Vectors added side by side, so that none waits for the one before.
constexpr unsigned long kVectorsAtOnce = 4;

/// Adds 16 bytes to two 64-bit sums; their distance from zero is their sum.
__m128i add_vector(__m128i sums, const unsigned char* bytes) {
  const __m128i vector = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
  return _mm_add_epi64(sums, _mm_sad_epu8(vector, _mm_setzero_si128()));
}

std::uint64_t total_of(__m128i sums) {
  std::array<std::uint64_t, 2> halves{};
  _mm_storeu_si128(reinterpret_cast<__m128i*>(halves.data()), sums);
  return halves[0] + halves[1];
}

}  // namespace

std::uint64_t byte_sum(std::span<const unsigned char> bytes) {
  __m128i sums[kVectorsAtOnce] = {};
  unsigned long i = 0;
  for (; i + kVector * kVectorsAtOnce <= bytes.size(); i += kVector * kVectorsAtOnce) {
    for (unsigned long v = 0; v < kVectorsAtOnce; ++v) {
      sums[v] = add_vector(sums[v], bytes.data() + i + v * kVector);
    }
  }
  for (; i + kVector <= bytes.size(); i += kVector) {
    sums[0] = add_vector(sums[0], bytes.data() + i);
  }
  std::uint64_t sum = 0;
  for (const __m128i& part : sums) {
    sum += total_of(part);
  }
  for (; i < bytes.size(); ++i) {
    sum += bytes[i];
  }
  return sum;
}

std::uint64_t column_sum(const utilities::ClSimpleBitmap& bitmap, unsigned long from,
                         unsigned long count) {
  const unsigned long stride = bitmap.BPRow();
  const unsigned long height = bitmap.Height();
  std::uint64_t sum = 0;
  for (unsigned long row = 0; row < height; ++row) {
    sum += byte_sum({bitmap.Pixel() + row * stride + from, count});
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
