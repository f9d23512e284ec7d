#pragma once

#include <vector>

#include "ostrevanhvk3_simulator/bench.h"

/// @file
/// The finger as the sensor sees it.

namespace Osv::simulator {

/// Upper left corner in the final image of a picture that lies in its middle.
Place centered(int width, int height);

/// A picture brought onto the platen, per pixel of the raw frame, rows from the top.
struct Finger {
  std::vector<unsigned char> ink;  ///< 255 where the picture is black, 0 where white or outside
  std::vector<unsigned char> distance;  ///< from the picture's centre, in steps of `kDistanceStep`
  std::vector<unsigned char> across;    ///< from `-kAcrossReach`, in steps of `kAcrossStep`
};

/// Distances are 1 at the middle of the picture's edges, 1.41 in its corners.
inline constexpr float kDistanceStep = 1.5F / 255;

/// Places across the picture: -1 its left edge, 1 its right one.
inline constexpr float kAcrossReach = 1.5F;
inline constexpr float kAcrossStep = 2 * kAcrossReach / 255;

Finger lay_down(const GrayImage& picture);

}  // namespace Osv::simulator
