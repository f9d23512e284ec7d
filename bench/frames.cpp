#include "frames.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <span>

namespace Osv::bench {
namespace {

/// Of the largest cache that the system reports; 32 MiB where it reports none.
unsigned long last_cache() {
  unsigned long largest = 0;
  for (const auto& cache : benchmark::CPUInfo::Get().caches) {
    largest = std::max(largest, static_cast<unsigned long>(cache.size));
  }
  return largest == 0 ? 32UL << 20 : largest;
}

}  // namespace

std::string name_of(Size size) {
  return std::to_string(size.width) + "x" + std::to_string(size.height);
}

utilities::ClSimpleBitmap noise(Size size, unsigned int seed) {
  utilities::ClSimpleBitmap frame;
  frame.Create(size.width, size.height, 8, 0);
  std::minstd_rand generator(seed);
  for (unsigned char& byte : std::span(frame.Pixel(), frame.PixelSize())) {
    byte = static_cast<unsigned char>(generator() >> 8);
  }
  return frame;
}

Ring::Ring(Size size, Temperature temperature) {
  const utilities::ClSimpleBitmap frame = noise(size, 1);
  const unsigned long count =
      temperature == Temperature::kWarm ? 1 : 2 * last_cache() / frame.PixelSize() + 1;
  m_frames.assign(count, frame);
}

}  // namespace Osv::bench
