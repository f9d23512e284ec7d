#pragma once

#include <chrono>
#include <vector>

#include "bench/pacer.h"

/// @file
/// The time between frames, without any passing.

namespace Osv::simulator {

/// While it lives, paced frames wait for no time: the time that they would wait for is there at
/// once. One object at a time, for the frames of one thread.
class PaceWatch {
 public:
  using Duration = PaceClock::Clock::duration;

  PaceWatch() : m_pBefore(exchange_pace_clock(&s_cClock)) {
    s_cNow = PaceClock::Clock::time_point(std::chrono::hours(1));
    s_vWaits.clear();
  }
  ~PaceWatch() { exchange_pace_clock(m_pBefore); }
  PaceWatch(const PaceWatch&) = delete;
  PaceWatch& operator=(const PaceWatch&) = delete;

  /// How long each frame waited, in their order.
  const std::vector<Duration>& waits() const { return s_vWaits; }

  /// Lets time pass between two frames.
  void pass(Duration duration) { s_cNow += duration; }

 private:
  static PaceClock::Clock::time_point now() { return s_cNow; }
  static void sleep_until(PaceClock::Clock::time_point time) {
    s_vWaits.push_back(time - s_cNow);
    s_cNow = time;
  }

  static constexpr PaceClock s_cClock = {&PaceWatch::now, &PaceWatch::sleep_until};
  inline static PaceClock::Clock::time_point s_cNow;
  inline static std::vector<Duration> s_vWaits;

  const PaceClock* m_pBefore;
};

}  // namespace Osv::simulator
