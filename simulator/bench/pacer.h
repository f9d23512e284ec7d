#pragma once

#include <chrono>
#include <mutex>

/// @file
/// The time of frames.

namespace Osv::simulator {

/// Keeps frames apart for people; tests let it be. Any thread may call it.
class Pacer {
 public:
  /// Frames per second, 0 for no waiting.
  void set(unsigned int frames_per_second);

  /// Waits for the time of the next frame.
  void wait();

 private:
  using Clock = std::chrono::steady_clock;

  /// The time at which the caller's frame is due.
  Clock::time_point take_turn();

  std::mutex m_cLock;
  Clock::duration m_cInterval{};
  Clock::time_point m_cNext{};
};

}  // namespace Osv::simulator
