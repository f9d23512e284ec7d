#include "memory_limits.h"

#include <benchmark/benchmark.h>
#include <immintrin.h>

#include <cstdint>
#include <cstring>

namespace Osv::bench {
namespace {

bool has_avx2() { return __builtin_cpu_supports("avx2") != 0; }

/// Bytes up to the next address that is a multiple of a vector's size.
std::size_t before_aligned(const void* bytes, std::size_t vector) {
  return (vector - reinterpret_cast<std::uintptr_t>(bytes) % vector) % vector;
}

/// At least one vector; the first and the last one overlap the aligned ones between them.
__attribute__((target("avx2"))) void read_avx2(const unsigned char* bytes, std::size_t size) {
  __m256i any[4] = {};
  any[0] = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
  any[1] = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes + size - sizeof(__m256i)));
  std::size_t i = before_aligned(bytes, sizeof(__m256i));
  for (; i + sizeof(any) <= size; i += sizeof(any)) {
    for (std::size_t v = 0; v < 4; ++v) {
      const auto* const vector = reinterpret_cast<const __m256i*>(bytes + i) + v;
      any[v] = _mm256_or_si256(any[v], _mm256_load_si256(vector));
    }
  }
  for (; i + sizeof(__m256i) <= size; i += sizeof(__m256i)) {
    any[2] =
        _mm256_or_si256(any[2], _mm256_load_si256(reinterpret_cast<const __m256i*>(bytes + i)));
  }
  benchmark::DoNotOptimize(any);
}

void read_sse2(const unsigned char* bytes, std::size_t size) {
  __m128i any[4] = {};
  any[0] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
  any[1] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + size - sizeof(__m128i)));
  std::size_t i = before_aligned(bytes, sizeof(__m128i));
  for (; i + sizeof(any) <= size; i += sizeof(any)) {
    for (std::size_t v = 0; v < 4; ++v) {
      const auto* const vector = reinterpret_cast<const __m128i*>(bytes + i) + v;
      any[v] = _mm_or_si128(any[v], _mm_load_si128(vector));
    }
  }
  for (; i + sizeof(__m128i) <= size; i += sizeof(__m128i)) {
    any[2] = _mm_or_si128(any[2], _mm_load_si128(reinterpret_cast<const __m128i*>(bytes + i)));
  }
  benchmark::DoNotOptimize(any);
}

__attribute__((target("avx2"))) std::size_t modify_avx2(unsigned char* bytes, std::size_t size) {
  const __m256i ones = _mm256_set1_epi8(-1);
  std::size_t i = 0;
  for (; i + 4 * sizeof(__m256i) <= size; i += 4 * sizeof(__m256i)) {
    for (std::size_t v = 0; v < 4; ++v) {
      auto* const vector = reinterpret_cast<__m256i*>(bytes + i) + v;
      _mm256_store_si256(vector, _mm256_xor_si256(ones, _mm256_load_si256(vector)));
    }
  }
  return i;
}

std::size_t modify_sse2(unsigned char* bytes, std::size_t size) {
  const __m128i ones = _mm_set1_epi8(-1);
  std::size_t i = 0;
  for (; i + 4 * sizeof(__m128i) <= size; i += 4 * sizeof(__m128i)) {
    for (std::size_t v = 0; v < 4; ++v) {
      auto* const vector = reinterpret_cast<__m128i*>(bytes + i) + v;
      _mm_store_si128(vector, _mm_xor_si128(ones, _mm_load_si128(vector)));
    }
  }
  return i;
}

/// The bytes before and behind the whole vectors.
void modify_single(unsigned char* bytes, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) {
    bytes[i] = static_cast<unsigned char>(~bytes[i]);
  }
}

}  // namespace

void read_pass(const unsigned char* bytes, std::size_t size) {
  if (has_avx2()) {
    read_avx2(bytes, size);
  } else {
    read_sse2(bytes, size);
  }
}

void modify_pass(unsigned char* bytes, std::size_t size) {
  const std::size_t begin = before_aligned(bytes, sizeof(__m256i));
  if (begin > size) {
    modify_single(bytes, size);
    return;
  }
  modify_single(bytes, begin);
  const std::size_t end = begin + (has_avx2() ? modify_avx2(bytes + begin, size - begin)
                                              : modify_sse2(bytes + begin, size - begin));
  modify_single(bytes + end, size - end);
}

void write_pass(unsigned char* bytes, std::size_t size) {
  std::memset(bytes, 0x5A, size);
  benchmark::ClobberMemory();
}

}  // namespace Osv::bench
