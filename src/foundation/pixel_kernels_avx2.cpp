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

HVK3_AVX2 __m256i byte_sums(const unsigned char* bytes) {
  const __m256i vector = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
  return _mm256_sad_epu8(vector, _mm256_setzero_si256());
}

HVK3_AVX2 std::uint64_t sum(const unsigned char* bytes, std::size_t size) {
  __m256i sums[kVectorsAtOnce] = {};
  std::size_t i = 0;
  for (; i + sizeof(sums) <= size; i += sizeof(sums)) {
    for (std::size_t v = 0; v < kVectorsAtOnce; ++v) {
      sums[v] = _mm256_add_epi64(sums[v], byte_sums(bytes + i + v * kVector));
    }
  }
  const __m256i pairs =
      _mm256_add_epi64(_mm256_add_epi64(sums[0], sums[1]), _mm256_add_epi64(sums[2], sums[3]));
  const __m128i halves =
      _mm_add_epi64(_mm256_castsi256_si128(pairs), _mm256_extracti128_si256(pairs, 1));
  return loops::total_of(halves) + loops::sum_by_vectors(bytes + i, size - i);
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
  loops::double_row(bytes, size, first, second);
}

/// Four bytes as doubles. Each takes the lowest place of a mantissa, under the exponent of 2^52;
/// without that number the byte is left.
HVK3_AVX2 __m256d doubles_of(const unsigned char* bytes, __m256i places) {
  const __m256i exponent = _mm256_set1_epi64x(0x4330000000000000);
  const __m256i both =
      _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)));
  const __m256i sum = _mm256_or_si256(_mm256_shuffle_epi8(both, places), exponent);
  return _mm256_sub_pd(_mm256_castsi256_pd(sum), _mm256_castsi256_pd(exponent));
}

HVK3_AVX2 void blend_across(const unsigned char* row, const ColumnBlends& blends,
                            BlendedColumns* out) {
  if (blends.places == nullptr) {
    loops::blend_across(row, blends, out);
    return;
  }
  const BlendedColumns* weights = blends.weights;
  const std::uint32_t* first = blends.first;
  const BlendedPlaces* const end = blends.places + blends.size;
#pragma GCC unroll 2
  for (const BlendedPlaces* i = blends.places; i != end; ++i) {
    const __m256i places = _mm256_load_si256(reinterpret_cast<const __m256i*>(i->places));
    const __m256d firsts =
        _mm256_mul_pd(doubles_of(row + *first, places), _mm256_load_pd(weights[0].values));
    const __m256d seconds =
        _mm256_mul_pd(doubles_of(row + *first + 1, places), _mm256_load_pd(weights[1].values));
    _mm256_store_pd(out->values, _mm256_add_pd(firsts, seconds));
    weights += 2;
    first += kBlendedTogether;
    ++out;
  }
}

HVK3_AVX2 void blend_down(const BlendedColumns* top, double top_weight,
                          const BlendedColumns* bottom, double bottom_weight, unsigned char* out,
                          std::size_t size) {
  loops::blend_down(top, top_weight, bottom, bottom_weight, out, size);
}

}  // namespace

const PixelKernels kAvx2Kernels{invert,         flip,      flip_and_invert, sum,
                                add_eight_rows, add_row,   replace_marked,  double_row,
                                blend_across,   blend_down};

}  // namespace Osv::img
