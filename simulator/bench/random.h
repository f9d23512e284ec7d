#pragma once

#include <cstdint>

/// @file
/// Chance that is the same in every run.

namespace Osv::simulator {

/// The noise of one pixel: a hash of its argument.
std::uint32_t scramble(std::uint32_t value);

/// An even distribution between 0 and 1, by the hash of its argument.
float fraction(std::uint32_t value);

/// Independent values by the place in a row: the chances of one seed.
class Chances {
 public:
  explicit Chances(std::uint32_t seed) : m_nBase(scramble(seed)) {}

  /// Between 0 and 1, for each number another.
  float at(std::uint32_t number) const { return fraction(m_nBase + number); }

  /// The same between two limits.
  float between(std::uint32_t number, float low, float high) const {
    return low + (high - low) * at(number);
  }

 private:
  std::uint32_t m_nBase;
};

/// Smooth noise: random values on a grid, and soft passages between them.
class Clouds {
 public:
  /// @param size of the grid in pixels
  Clouds(std::uint32_t seed, float size) : m_cValues(seed), m_nSize(size) {}

  /// Between -1 and 1.
  float at(float x, float y) const;

 private:
  float node(int x, int y) const;

  Chances m_cValues;
  float m_nSize;
};

}  // namespace Osv::simulator
