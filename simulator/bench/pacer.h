#pragma once

#include <chrono>
#include <mutex>

#include "bench/visibility.h"

/// @file
/// The time of frames.

namespace Osv::simulator {

/// What pacers go by. Called from any thread.
struct PaceClock {
  using Clock = std::chrono::steady_clock;

  Clock::time_point (*now)();
  void (*sleep_until)(Clock::time_point time);
};

/// Puts another clock in the place of the one that all pacers go by, for tests; null stands for the
/// system's. The clock has to stay.
/// @return the one before, null for the system's
OSV_SIMULATOR_API const PaceClock* exchange_pace_clock(const PaceClock* clock);

/// Keeps frames apart for people; tests let it be. Any thread may call it.
class Pacer {
 public:
  /// Frames per second, 0 for no waiting.
  void set(unsigned int frames_per_second);

  /// Waits for the time of the next frame.
  void wait();

 private:
  using Clock = PaceClock::Clock;

  /// The time at which the caller's frame is due.
  Clock::time_point take_turn(const PaceClock& clock);

  std::mutex m_cLock;
  Clock::duration m_cInterval{};
  Clock::time_point m_cNext{};
};

}  // namespace Osv::simulator
