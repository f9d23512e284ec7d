#pragma once

#include <chrono>
#include <deque>

/// @file
/// Frames per second.

namespace hvk3::view {

/// Counts what came in within the last second or so.
class FrameRate {
 public:
  using Clock = std::chrono::steady_clock;

  void add(Clock::time_point moment);

  /// 0 when too little has come in lately.
  double at(Clock::time_point now) const;

  /// After a pause, which is no slowness.
  void forget() { m_cMoments.clear(); }

 private:
  std::deque<Clock::time_point> m_cMoments;
};

}  // namespace hvk3::view
