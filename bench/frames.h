#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "foundation/bitmap.h"

/// @file
/// Frames to measure with.

namespace Osv::bench {

struct Size {
  unsigned long width;
  unsigned long height;
};

/// The frames of the scanners' channels, and one that leaves the second cache.
inline constexpr Size kSizes[] = {{320, 480}, {640, 480}, {800, 750}, {1600, 1500}};

std::string name_of(Size size);

/// A gray frame of noise, its padding included.
utilities::ClSimpleBitmap noise(Size size, unsigned int seed);

/// How a frame meets the caches.
enum class Temperature {
  kWarm,  ///< the same frame again and again
  kCold   ///< each frame after others that together are twice the last cache
};

/// Frames that are handed out in turn.
class Ring {
 public:
  Ring(Size size, Temperature temperature);

  utilities::ClSimpleBitmap& next() {
    m_next = m_next + 1 == m_frames.size() ? 0 : m_next + 1;
    return m_frames[m_next];
  }

 private:
  std::vector<utilities::ClSimpleBitmap> m_frames;
  std::size_t m_next = 0;
};

}  // namespace Osv::bench
