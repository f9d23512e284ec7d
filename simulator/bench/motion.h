#pragma once

#include <vector>

#include "ostrevanhvk3_simulator/bench.h"

/// @file
/// How the finger moves from frame to frame.

namespace Osv::simulator {

/// How the finger touches the platen in one frame.
struct Touch {
  float contact = 0;  ///< 0 none, 1 settled
  float middle = 0;   ///< of the strip that touches: -1 the picture's left edge, 1 its right one
  float half_width = kWhole;  ///< of this strip, beyond which contact falls off softly

  /// A strip so wide that all of the picture touches.
  static constexpr float kWhole = 8;

  bool operator==(const Touch&) const = default;
};

/// A way of the finger over frames counted from 0.
class Motion {
 public:
  /// Comes and goes as a timeline tells.
  explicit Motion(const Timeline& timeline);

  /// From how it touched last: comes and stays, lifts and stays away, or rolls and stays on the
  /// side that it has reached. A roll begins with a touch on its first side, if the finger isn't
  /// there.
  /// @{
  static Motion touching_down(const Touch& last);
  static Motion lifting_off(const Touch& last);
  static Motion rolling(const Touch& last, eRoll roll, unsigned int frames);
  /// @}

  Touch at(unsigned int frame) const;

 private:
  /// Frames in which the touch goes from one state to another.
  struct Phase {
    unsigned int frames;
    Touch from;
    Touch to;
    bool arrives;  // the last frame is at `to`, the first one at `from`; otherwise both lie between
  };

  Motion() = default;
  void add(const Phase& phase);
  void hold(const Touch& touch);

  std::vector<Phase> m_vPhases;
  unsigned int m_nFrames = 0;  // of all phases together
  bool m_bAgain = false;       // from the beginning after the last phase, which otherwise holds
};

}  // namespace Osv::simulator
