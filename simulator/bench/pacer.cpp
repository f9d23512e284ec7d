#include "bench/pacer.h"

#include <algorithm>
#include <atomic>
#include <thread>

namespace Osv::simulator {
namespace {

constexpr PaceClock kSystemClock = {
    [] { return PaceClock::Clock::now(); },
    [](PaceClock::Clock::time_point time) { std::this_thread::sleep_until(time); }};

std::atomic<const PaceClock*> s_pClock = nullptr;

}  // namespace

const PaceClock* exchange_pace_clock(const PaceClock* clock) { return s_pClock.exchange(clock); }

void Pacer::set(unsigned int frames_per_second) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  m_cInterval = frames_per_second == 0
                    ? Clock::duration::zero()
                    : Clock::duration(std::chrono::seconds(1)) / frames_per_second;
  m_cNext = {};
}

void Pacer::wait() {
  const PaceClock* const exchanged = s_pClock;
  const PaceClock& clock = exchanged != nullptr ? *exchanged : kSystemClock;
  const Clock::time_point due = take_turn(clock);
  if (due != Clock::time_point{}) {
    clock.sleep_until(due);
  }
}

Pacer::Clock::time_point Pacer::take_turn(const PaceClock& clock) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  if (m_cInterval == Clock::duration::zero()) {
    return {};
  }
  const Clock::time_point due = std::max(m_cNext, clock.now());
  m_cNext = due + m_cInterval;
  return due;
}

}  // namespace Osv::simulator
