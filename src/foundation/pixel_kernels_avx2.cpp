#include <immintrin.h>

#include "foundation/pixel_kernel_sets.h"
#include "foundation/pixel_loops.h"

// On each function, not on the file: nothing that the headers bring may be compiled for this set,
// lest it be linked for every processor.
#define HVK3_AVX2 __attribute__((target("avx2")))

namespace Osv::img {
namespace {

constexpr std::size_t kVector = sizeof(__m256i);

/// Vectors added side by side, so that none waits for the one before.
constexpr std::size_t kVectorsAtOnce = 4;

HVK3_AVX2 void invert(unsigned char* bytes, std::size_t size) {
  loops::invert<kVector>(bytes, size);
}

HVK3_AVX2 void flip(unsigned char* rows, std::size_t stride, std::size_t height) {
  loops::flip<kVector, loops::kKeep>(rows, stride, height);
}

HVK3_AVX2 void flip_and_invert(unsigned char* rows, std::size_t stride, std::size_t height) {
  loops::flip<kVector, loops::kComplement>(rows, stride, height);
}

/// Zeros, as many ones, and zeros again. What is loaded from `kKeepFirst` less n keeps the first n
/// bytes of a vector, and from `kKeepLast` plus n the last n.
constexpr auto kMasks = [] {
  struct {
    unsigned char bytes[3 * kVector] = {};
  } masks;
  for (std::size_t i = kVector; i < 2 * kVector; ++i) {
    masks.bytes[i] = 0xFF;
  }
  return masks;
}();
const unsigned char* const kKeepLast = kMasks.bytes;
const unsigned char* const kKeepFirst = kMasks.bytes + 2 * kVector;

HVK3_AVX2 __m256i load(const unsigned char* bytes) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
}

/// Sums of absolute differences against zero.
HVK3_AVX2 __m256i byte_sums(__m256i vector) {
  return _mm256_sad_epu8(vector, _mm256_setzero_si256());
}

HVK3_AVX2 std::uint64_t total_of(__m256i sums) {
  const __m128i halves =
      _mm_add_epi64(_mm256_castsi256_si128(sums), _mm256_extracti128_si256(sums, 1));
  return loops::total_of(halves);
}

/// Whole vectors where they are aligned, which is worth a third of the time, and masked ones at
/// both ends.
HVK3_AVX2 std::uint64_t sum(const unsigned char* bytes, std::size_t size) {
  if (size < kVector) {
    return loops::sum_by_vectors(bytes, size);
  }
  const std::size_t begin = loops::unaligned_bytes<kVector>(bytes);
  __m256i sums[kVectorsAtOnce] = {
      byte_sums(_mm256_and_si256(load(bytes), load(kKeepFirst - begin)))};
  std::size_t i = begin;
  for (; i + sizeof(sums) <= size; i += sizeof(sums)) {
    for (std::size_t v = 0; v < kVectorsAtOnce; ++v) {
      sums[v] = _mm256_add_epi64(sums[v], byte_sums(load(bytes + i + v * kVector)));
    }
  }
  for (; i + kVector <= size; i += kVector) {
    sums[1] = _mm256_add_epi64(sums[1], byte_sums(load(bytes + i)));
  }
  sums[2] = _mm256_add_epi64(sums[2], byte_sums(_mm256_and_si256(load(bytes + size - kVector),
                                                                 load(kKeepLast + (size - i)))));
  return total_of(
      _mm256_add_epi64(_mm256_add_epi64(sums[0], sums[1]), _mm256_add_epi64(sums[2], sums[3])));
}

HVK3_AVX2 void add_eight_rows(std::uint16_t* words, std::uint16_t* rights,
                              const unsigned char* rows, std::size_t stride, std::size_t pairs) {
  loops::add_rows<8>(words, rights, rows, stride, pairs);
}

HVK3_AVX2 void add_row(std::uint16_t* words, std::uint16_t* rights, const unsigned char* row,
                       std::size_t pairs) {
  loops::add_rows<1>(words, rights, row, 0, pairs);
}

HVK3_AVX2 void replace_marked(unsigned char* target, const unsigned char* source,
                              const unsigned char* marks, std::size_t size) {
  loops::replace_marked(target, source, marks, size);
}

HVK3_AVX2 void double_row(const unsigned char* bytes, std::size_t size, unsigned char* first,
                          unsigned char* second) {
  loops::double_row<kVector>(bytes, size, first, second);
}

/// 16 bytes, twice.
HVK3_AVX2 __m256i twice(const unsigned char* bytes) {
  return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)));
}

/// Eight bytes as numbers of 32 bits.
HVK3_AVX2 void pick(const unsigned char* bytes, const BlendedPlaces& places, std::int32_t* picked) {
  const __m256i shuffle = _mm256_load_si256(reinterpret_cast<const __m256i*>(places.places));
  _mm256_store_si256(reinterpret_cast<__m256i*>(picked),
                     _mm256_shuffle_epi8(twice(bytes), shuffle));
}

HVK3_AVX2 void pick_columns(const unsigned char* row, const ColumnBlends& blends,
                            loops::PickedColumns& picked) {
  if (blends.places == nullptr) {
    loops::pick_columns(row, blends, picked);
    return;
  }
  for (std::size_t i = 0; i < blends.size; ++i) {
    const std::size_t x = i * kBlendedTogether;
    pick(row + blends.first[x], blends.places[i], picked.first + x);
    pick(row + blends.first[x] + 1, blends.places[i], picked.second + x);
  }
}

/// Four numbers as doubles. Converted from memory they pass the one port for shuffles by.
HVK3_AVX2 __m256d doubles_at(const std::int32_t* picked) {
  return _mm256_cvtepi32_pd(_mm_load_si128(reinterpret_cast<const __m128i*>(picked)));
}

HVK3_AVX2 void blend_picked(const loops::PickedColumns& picked, const ColumnBlends& blends,
                            BlendedColumns* out) {
  constexpr std::size_t kDoubles = sizeof(__m256d) / sizeof(double);
  const std::int32_t* first = picked.first;
  const std::int32_t* second = picked.second;
  const ColumnWeights* weights = blends.weights;
  for (BlendedColumns* const end = out + blends.size; out != end; ++out) {
    for (std::size_t x = 0; x < kBlendedTogether; x += kDoubles) {
      _mm256_store_pd(
          out->values + x,
          _mm256_add_pd(
              _mm256_mul_pd(doubles_at(first + x), _mm256_load_pd(weights->first.values + x)),
              _mm256_mul_pd(doubles_at(second + x), _mm256_load_pd(weights->second.values + x))));
    }
    first += kBlendedTogether;
    second += kBlendedTogether;
    ++weights;
  }
}

HVK3_AVX2 void blend_across(const unsigned char* row, const ColumnBlends& blends,
                            BlendedColumns* out) {
  loops::blend_across<pick_columns, blend_picked>(row, blends, out);
}

/// Two rows, with what they count.
struct RowPair {
  const double* top;
  const double* bottom;
  __m256d top_weight;
  __m256d bottom_weight;
};

/// Four columns as numbers of 32 bits.
HVK3_AVX2 __m128i blended(const RowPair& rows, std::size_t x) {
  return _mm256_cvttpd_epi32(
      _mm256_add_pd(_mm256_mul_pd(rows.top_weight, _mm256_load_pd(rows.top + x)),
                    _mm256_mul_pd(rows.bottom_weight, _mm256_load_pd(rows.bottom + x))));
}

/// Narrows without the masks that the compiler would put between, as it can't know that the numbers
/// are bytes.
HVK3_AVX2 void blend_down(const BlendedColumns* top, double top_weight,
                          const BlendedColumns* bottom, double bottom_weight, unsigned char* out,
                          std::size_t size) {
  const RowPair rows{top->values, bottom->values, _mm256_set1_pd(top_weight),
                     _mm256_set1_pd(bottom_weight)};
  std::size_t x = 0;
  for (; x + sizeof(__m128i) <= size; x += sizeof(__m128i)) {
    const __m128i first = _mm_packs_epi32(blended(rows, x), blended(rows, x + 4));
    const __m128i second = _mm_packs_epi32(blended(rows, x + 8), blended(rows, x + 12));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + x), _mm_packus_epi16(first, second));
  }
  loops::blend_down(top + x / kBlendedTogether, top_weight, bottom + x / kBlendedTogether,
                    bottom_weight, out + x, size - x);
}

}  // namespace

const PixelKernels kAvx2Kernels{invert,         flip,      flip_and_invert, sum,
                                add_eight_rows, add_row,   replace_marked,  double_row,
                                blend_across,   blend_down};

}  // namespace Osv::img
