#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include <emmintrin.h>

#include "foundation/pixel_kernels.h"

/// @file
/// Loops that the compiler makes vectors of, those of the instruction set of the function that they
/// are inlined into. They call nothing that could stay a function of its own: compiled for one set,
/// it might be linked where another is expected.

namespace Osv::img::loops {

#define HVK3_LOOP [[gnu::always_inline]] inline

/// What complements a byte, and what leaves it alone.
constexpr unsigned char kComplement = 0xFF;
constexpr unsigned char kKeep = 0;

/// Bytes up to the next address that is a multiple of `kVector`.
template <std::size_t kVector>
HVK3_LOOP std::size_t unaligned_bytes(const unsigned char* bytes) {
  return (kVector - reinterpret_cast<std::uintptr_t>(bytes) % kVector) % kVector;
}

/// Bytes from anywhere, held in registers.
template <std::size_t kVector>
struct Held {
  HVK3_LOOP explicit Held(const unsigned char* from) { std::memcpy(&bytes, from, kVector); }
  HVK3_LOOP void put(unsigned char* to, unsigned char flip) const {
    const auto flipped = bytes ^ flip;
    std::memcpy(to, &flipped, kVector);
  }

  unsigned char bytes [[gnu::vector_size(kVector)]];
};

HVK3_LOOP void invert_bytes(unsigned char* bytes, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) {
    bytes[i] = static_cast<unsigned char>(~bytes[i]);
  }
}

/// The same for whole vectors, several at once where there are.
template <std::size_t kVector>
HVK3_LOOP void invert_vectors(unsigned char* vectors, std::size_t size) {
  constexpr std::size_t kAtOnce = 4 * kVector;
  auto* const aligned = static_cast<unsigned char*>(__builtin_assume_aligned(vectors, kVector));
  std::size_t i = 0;
  for (; i + kAtOnce <= size; i += kAtOnce) {
    invert_bytes(aligned + i, kAtOnce);
  }
  for (; i < size; i += kVector) {
    invert_bytes(aligned + i, kVector);
  }
}

/// Complements whole aligned vectors, and then, from what was there at first, the vectors at both
/// ends, which overlap them.
template <std::size_t kVector>
HVK3_LOOP void invert(unsigned char* bytes, std::size_t size) {
  if (size < 2 * kVector) {
    invert_bytes(bytes, size);
    return;
  }
  const Held<kVector> head(bytes);
  const Held<kVector> tail(bytes + size - kVector);
  const std::size_t begin = unaligned_bytes<kVector>(bytes);
  invert_vectors<kVector>(bytes + begin, (size - begin) / kVector * kVector);
  head.put(bytes, kComplement);
  tail.put(bytes + size - kVector, kComplement);
}

template <unsigned char kFlip>
HVK3_LOOP void swap_bytes(unsigned char* __restrict a, unsigned char* __restrict b,
                          std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) {
    const auto kept = static_cast<unsigned char>(a[i] ^ kFlip);
    a[i] = static_cast<unsigned char>(b[i] ^ kFlip);
    b[i] = kept;
  }
}

/// Exchanges whole vectors, aligned in the first row, and those at both ends as `invert` does.
template <std::size_t kVector, unsigned char kFlip>
HVK3_LOOP void swap_rows(unsigned char* __restrict a, unsigned char* __restrict b,
                         std::size_t size) {
  if (size < 2 * kVector) {
    swap_bytes<kFlip>(a, b, size);
    return;
  }
  const std::size_t last = size - kVector;
  const Held<kVector> a_head(a);
  const Held<kVector> a_tail(a + last);
  const Held<kVector> b_head(b);
  const Held<kVector> b_tail(b + last);
  const std::size_t begin = unaligned_bytes<kVector>(a);
  auto* const aligned = static_cast<unsigned char*>(__builtin_assume_aligned(a + begin, kVector));
  swap_bytes<kFlip>(aligned, b + begin, (size - begin) / kVector * kVector);
  b_head.put(a, kFlip);
  b_tail.put(a + last, kFlip);
  a_head.put(b, kFlip);
  a_tail.put(b + last, kFlip);
}

/// Asks for a row that will be needed.
HVK3_LOOP void fetch_row(const unsigned char* row, std::size_t size) {
  constexpr std::size_t kCacheLine = 64;
  for (std::size_t i = 0; i < size; i += kCacheLine) {
    __builtin_prefetch(row + i);
  }
}

/// Frames from this size on are fetched ahead. Smaller ones fit into the second cache, where
/// whoever has just written them has left them, and asking again would only take time.
constexpr std::size_t kFetchedFrame = 512UL * 1024;

/// Bytes between what is fetched and what is worked on.
constexpr std::size_t kFetchedAhead = 2048;

/// The processor follows rows that go upwards by itself, but not those that are taken from below.
template <std::size_t kVector, unsigned char kFlip>
HVK3_LOOP void flip(unsigned char* rows, std::size_t stride, std::size_t height) {
  const std::size_t pairs = stride == 0 ? 0 : height / 2;  // of no bytes there may be any number
  const bool fetched = stride * height >= kFetchedFrame;
  const std::size_t ahead = fetched ? kFetchedAhead / stride + 1 : pairs;
  for (std::size_t row = 0; row < pairs; ++row) {
    if (ahead < pairs - row) {
      fetch_row(rows + (height - 1 - row - ahead) * stride, stride);
    }
    swap_rows<kVector, kFlip>(rows + row * stride, rows + (height - 1 - row) * stride, stride);
  }
}

HVK3_LOOP std::uint64_t total_of(__m128i halves) {
  return static_cast<std::uint64_t>(_mm_cvtsi128_si64(halves)) +
         static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(halves, halves)));
}

/// Sums of absolute differences against zero, in vectors of 16 bytes.
HVK3_LOOP std::uint64_t sum_by_vectors(const unsigned char* bytes, std::size_t size) {
  constexpr std::size_t kAtOnce = 4;  // so that none waits for the one before
  __m128i sums[kAtOnce] = {};
  std::size_t i = 0;
  for (; i + sizeof(sums) <= size; i += sizeof(sums)) {
    for (std::size_t v = 0; v < kAtOnce; ++v) {
      const auto* const vector = reinterpret_cast<const __m128i*>(bytes + i) + v;
      sums[v] = _mm_add_epi64(sums[v], _mm_sad_epu8(_mm_loadu_si128(vector), _mm_setzero_si128()));
    }
  }
  for (; i + sizeof(__m128i) <= size; i += sizeof(__m128i)) {
    const auto* const vector = reinterpret_cast<const __m128i*>(bytes + i);
    sums[0] = _mm_add_epi64(sums[0], _mm_sad_epu8(_mm_loadu_si128(vector), _mm_setzero_si128()));
  }
  std::uint64_t sum =
      total_of(_mm_add_epi64(_mm_add_epi64(sums[0], sums[1]), _mm_add_epi64(sums[2], sums[3])));
  for (; i < size; ++i) {
    sum += bytes[i];
  }
  return sum;
}

HVK3_LOOP std::uint16_t word_at(const unsigned char* pixels) {
  std::uint16_t word = 0;
  std::memcpy(&word, pixels, sizeof(word));
  return word;
}

/// Several rows side by side, so that each visit to a sum adds several pixels.
template <std::size_t kRows>
HVK3_LOOP void add_rows(std::uint16_t* __restrict words, std::uint16_t* __restrict rights,
                        const unsigned char* __restrict rows, std::size_t stride,
                        std::size_t pairs) {
  for (std::size_t pair = 0; pair < pairs; ++pair) {
    std::uint16_t sum = words[pair];
    std::uint16_t right = rights[pair];
    for (std::size_t row = 0; row < kRows; ++row) {
      const std::uint16_t word = word_at(rows + row * stride + 2 * pair);
      sum = static_cast<std::uint16_t>(sum + word);
      right = static_cast<std::uint16_t>(right + (word >> 8));
    }
    words[pair] = sum;
    rights[pair] = right;
  }
}

HVK3_LOOP void replace_marked(unsigned char* __restrict target,
                              const unsigned char* __restrict source,
                              const unsigned char* __restrict marks, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) {
    target[i] = static_cast<unsigned char>((source[i] & marks[i]) | (target[i] & ~marks[i]));
  }
}

HVK3_LOOP void double_bytes(const unsigned char* __restrict bytes, std::size_t size,
                            unsigned char* __restrict first, unsigned char* __restrict second) {
  for (std::size_t i = 0; i < size; ++i) {
    first[2 * i] = first[2 * i + 1] = bytes[i];
    second[2 * i] = second[2 * i + 1] = bytes[i];
  }
}

/// Whole vectors, aligned in the first row of the output, and once more those at both ends, which
/// overlap them.
template <std::size_t kVector>
HVK3_LOOP void double_row(const unsigned char* bytes, std::size_t size, unsigned char* first,
                          unsigned char* second) {
  if (size < kVector) {
    double_bytes(bytes, size, first, second);
    return;
  }
  const std::size_t last = size - kVector;
  double_bytes(bytes, kVector, first, second);
  for (std::size_t i = unaligned_bytes<kVector>(first) / 2; i < last; i += kVector) {
    double_bytes(bytes + i, kVector, first + 2 * i, second + 2 * i);
  }
  double_bytes(bytes + last, kVector, first + 2 * last, second + 2 * last);
}

/// Columns whose neighbours are picked at once; they stay in the first cache until they are
/// blended.
constexpr std::size_t kPickedGroups = 32;

/// The two neighbours of columns, as numbers that convert to doubles straight from memory.
struct PickedColumns {
  alignas(64) std::int32_t first[kPickedGroups * kBlendedTogether];
  alignas(64) std::int32_t second[kPickedGroups * kBlendedTogether];
};

HVK3_LOOP void pick_columns(const unsigned char* row, const ColumnBlends& blends,
                            PickedColumns& picked) {
  for (std::size_t i = 0; i < blends.size; ++i) {
    for (std::size_t x = i * kBlendedTogether; x < (i + 1) * kBlendedTogether; ++x) {
      const unsigned char* const first = row + blends.first[x];
      picked.first[x] = first[0];
      picked.second[x] = first[1];
    }
  }
}

HVK3_LOOP void blend_picked(const PickedColumns& picked, const ColumnBlends& blends,
                            BlendedColumns* out) {
  for (std::size_t i = 0; i < blends.size; ++i) {
    for (std::size_t x = 0; x < kBlendedTogether; ++x) {
      out[i].values[x] =
          picked.first[i * kBlendedTogether + x] * blends.weights[i].first.values[x] +
          picked.second[i * kBlendedTogether + x] * blends.weights[i].second.values[x];
    }
  }
}

using Pick = void (*)(const unsigned char* row, const ColumnBlends& blends, PickedColumns& picked);
using Blend = void (*)(const PickedColumns& picked, const ColumnBlends& blends,
                       BlendedColumns* out);

template <Pick kPick, Blend kBlend>
HVK3_LOOP void blend_across(const unsigned char* row, const ColumnBlends& blends,
                            BlendedColumns* out) {
  PickedColumns picked;
  for (std::size_t i = 0; i < blends.size; i += kPickedGroups) {
    const std::size_t left = blends.size - i;
    const ColumnBlends part{left < kPickedGroups ? left : kPickedGroups, blends.weights + i,
                            blends.first + i * kBlendedTogether,
                            blends.places == nullptr ? nullptr : blends.places + i};
    kPick(row, part, picked);
    kBlend(picked, part, out + i);
  }
}

HVK3_LOOP void blend_down(const BlendedColumns* __restrict top, double top_weight,
                          const BlendedColumns* __restrict bottom, double bottom_weight,
                          unsigned char* __restrict out, std::size_t size) {
  const double* const tops = top->values;
  const double* const bottoms = bottom->values;
  for (std::size_t i = 0; i < size; ++i) {
    const double gray = top_weight * tops[i] + bottom_weight * bottoms[i];
    out[i] = static_cast<unsigned char>(static_cast<int>(gray));
  }
}

}  // namespace Osv::img::loops
