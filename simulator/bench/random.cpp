#include "bench/random.h"

#include <cmath>

namespace Osv::simulator {
namespace {

/// A passage from 0 to 1 that begins and ends flat.
float soft(float part) { return part * part * (3 - 2 * part); }

float mix(float part, float first, float second) { return first + part * (second - first); }

}  // namespace

std::uint32_t scramble(std::uint32_t value) {
  value = (value ^ (value >> 16U)) * 0x7FEB352DU;
  value = (value ^ (value >> 15U)) * 0x846CA68BU;
  return value ^ (value >> 16U);
}

float fraction(std::uint32_t value) {
  constexpr unsigned int kBits = 8;
  constexpr float kSteps = 1U << 24U;
  return static_cast<float>(scramble(value) >> kBits) / kSteps;
}

float Clouds::node(int x, int y) const {
  constexpr std::uint32_t kRow = 0x9E3779B1U;
  return 2 * m_cValues.at(static_cast<std::uint32_t>(x) + kRow * static_cast<std::uint32_t>(y)) - 1;
}

float Clouds::at(float x, float y) const {
  const float column = std::floor(x / m_nSize);
  const float row = std::floor(y / m_nSize);
  const float u = soft(x / m_nSize - column);
  const float v = soft(y / m_nSize - row);
  const int i = static_cast<int>(column);
  const int k = static_cast<int>(row);
  return mix(v, mix(u, node(i, k), node(i + 1, k)), mix(u, node(i, k + 1), node(i + 1, k + 1)));
}

}  // namespace Osv::simulator
