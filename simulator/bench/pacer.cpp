#include "bench/pacer.h"

#include <algorithm>
#include <thread>

namespace Osv::simulator {

void Pacer::set(unsigned int frames_per_second) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  m_cInterval = frames_per_second == 0
                    ? Clock::duration::zero()
                    : Clock::duration(std::chrono::seconds(1)) / frames_per_second;
  m_cNext = {};
}

void Pacer::wait() {
  const Clock::time_point due = take_turn();
  if (due != Clock::time_point{}) {
    std::this_thread::sleep_until(due);
  }
}

Pacer::Clock::time_point Pacer::take_turn() {
  const std::lock_guard<std::mutex> lock(m_cLock);
  if (m_cInterval == Clock::duration::zero()) {
    return {};
  }
  const Clock::time_point due = std::max(m_cNext, Clock::now());
  m_cNext = due + m_cInterval;
  return due;
}

}  // namespace Osv::simulator
