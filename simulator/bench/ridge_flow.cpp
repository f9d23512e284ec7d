#include "bench/ridge_flow.h"

#include <cmath>
#include <numbers>

namespace Osv::simulator {
namespace {

constexpr float kPi = std::numbers::pi_v<float>;

// Numbers of the chances of a finger.
enum eChance : unsigned int {
  kPattern,
  kCoreX,
  kCoreY,
  kDeltaX,
  kDeltaY,
  kOtherDeltaX,
  kOtherDeltaY,
  kCoreDistance,
  kTwist,
  kArch
};

}  // namespace

RidgeFlow::RidgeFlow(unsigned int seed, int width, int height)
    : m_nCenterX(static_cast<float>(width) / 2),
      m_nCenterY(static_cast<float>(height) / 2),
      m_nHalfWidth(static_cast<float>(width) / 2) {
  constexpr float kLoops = 0.62F;
  constexpr float kWhorls = 0.92F;
  const Chances chances(seed);
  m_nCenterX += chances.between(kCoreX, -14, 14);
  m_nCenterY += chances.between(kCoreY, -45, -15);
  m_nArch = chances.between(kArch, 0.7F, 0.95F);
  const float pattern = chances.at(kPattern);
  if (pattern < kLoops) {
    add_loop(chances, pattern < kLoops / 2 ? -1.0F : 1.0F);
  } else if (pattern < kWhorls) {
    add_whorl(chances);
  } else {
    add_tented_arch(chances);
  }
}

void RidgeFlow::add_loop(const Chances& chances, float side) {
  m_vSingularities = {{m_nCenterX, m_nCenterY, 1},
                      {m_nCenterX + side * chances.between(kDeltaX, 85, 112),
                       m_nCenterY + chances.between(kDeltaY, 90, 125), -1}};
}

void RidgeFlow::add_whorl(const Chances& chances) {
  const float distance = chances.between(kCoreDistance, 10, 24);
  const float twist = chances.between(kTwist, -10, 10);
  m_vSingularities = {{m_nCenterX - twist, m_nCenterY - distance, 1},
                      {m_nCenterX + twist, m_nCenterY + distance, 1},
                      {m_nCenterX - chances.between(kDeltaX, 95, 125),
                       m_nCenterY + chances.between(kDeltaY, 105, 140), -1},
                      {m_nCenterX + chances.between(kOtherDeltaX, 95, 125),
                       m_nCenterY + chances.between(kOtherDeltaY, 105, 140), -1}};
  m_nArch *= 0.4F;
}

void RidgeFlow::add_tented_arch(const Chances& chances) {
  const float lean = chances.between(kDeltaX, -12, 12);
  m_vSingularities = {{m_nCenterX, m_nCenterY + 10, 1},
                      {m_nCenterX + lean, m_nCenterY + chances.between(kDeltaY, 70, 100), -1}};
}

float RidgeFlow::at(float x, float y) const {
  float turns = 0;
  for (const Singularity& point : m_vSingularities) {
    turns += point.turn * std::atan2(point.y - y, x - point.x);
  }
  // Ridges slope down on both sides of the core, less and less towards the crease of the joint.
  const float side = std::tanh(1.6F * (x - m_nCenterX) / m_nHalfWidth);
  const float below = std::max((y - m_nCenterY) / (1.3F * m_nHalfWidth), 0.0F);
  const float upward = turns / 2 - m_nArch * side * std::exp(-below * below);
  const float direction = std::fmod(-upward, kPi);
  return direction < 0 ? direction + kPi : direction;
}

}  // namespace Osv::simulator
