#pragma once

#include <vector>

#include "bench/random.h"

/// @file
/// The way that the ridges of a print run.

namespace Osv::simulator {

/// Directions of the ridges of one finger: a loop to either side, a whorl, or an arch, as the seed
/// has it. Around a core they turn half a circle one way, around a delta the other way.
class RidgeFlow {
 public:
  /// @param width, height of the print; the core lies near its middle
  RidgeFlow(unsigned int seed, int width, int height);

  /// Direction of the ridge at a place, in radians between 0 and pi: 0 is along the row, and it
  /// grows towards higher rows' numbers.
  float at(float x, float y) const;

 private:
  struct Singularity {
    float x;
    float y;
    float turn;  // 1 for a core, -1 for a delta
  };

  void add_loop(const Chances& chances, float side);
  void add_whorl(const Chances& chances);
  void add_tented_arch(const Chances& chances);

  std::vector<Singularity> m_vSingularities;
  float m_nCenterX;
  float m_nCenterY;
  float m_nHalfWidth;
  float m_nArch;  // radians by which ridges slope down on both sides
};

}  // namespace Osv::simulator
