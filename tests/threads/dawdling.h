#pragma once

#include <sched.h>

#include <atomic>
#include <random>

/// @file
/// Delays of random length.

namespace Osv::threads {

/// Spins a random number of times, as often less than 200 times as more than 10,000: what it meets
/// lies nanoseconds or a frame away. Now and then it gives up the processor, too. The numbers are
/// the same in each run.
class Dawdler {
 public:
  /// @param magnitudes a delay has less than 2 to the power of this turns
  explicit Dawdler(unsigned int seed, unsigned int magnitudes = 18)
      : m_random(seed), m_nMagnitudes(magnitudes) {}

  void operator()() {
    std::atomic<unsigned int> turns = below(1U << below(m_nMagnitudes));
    while (turns.load(std::memory_order_relaxed) != 0) {
      turns.fetch_sub(1, std::memory_order_relaxed);
    }
    if (below(4) == 0) {
      sched_yield();
    }
  }

  /// A number from 0 to `limit` - 1.
  unsigned int below(unsigned int limit) { return static_cast<unsigned int>(m_random()) % limit; }

 private:
  std::mt19937 m_random;
  unsigned int m_nMagnitudes;
};

}  // namespace Osv::threads
