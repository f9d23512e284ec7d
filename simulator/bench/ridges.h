#pragma once

#include <vector>

#include "bench/ridge_flow.h"

/// @file
/// Ridges that grow along a flow.

namespace Osv::simulator {

/// From the middle of one ridge to that of the next in pixels, which is half a millimetre.
inline constexpr float kRidgePeriod = 9;

/// Height of the skin per pixel, rows from the top: 1 on a ridge, -1 in a valley.
struct Relief {
  int width = 0;
  int height = 0;
  std::vector<float> heights;

  float at(int x, int y) const {
    return heights[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                   static_cast<std::size_t>(x)];
  }
};

/// Grows ridges out of noise: it is filtered again and again with waves that lie across the flow.
/// Where neighbouring ridges run apart, new ones begin between them, which makes the minutiae.
Relief grow_ridges(unsigned int seed, const RidgeFlow& flow, int width, int height);

}  // namespace Osv::simulator
