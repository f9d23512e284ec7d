#pragma once

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <vector>

#include "bench/fault.h"
#include "bench/functions.h"

/// @file
/// The fault plan: which calls go wrong, and which wait.

namespace Osv::simulator {

/// Any thread may call it.
class FaultPlan {
 public:
  /// Replaces the plan, counts anew and lets blocked calls go on.
  void set(std::vector<Fault> faults);

  /// Adds to the plan; the calls of these faults are counted from now on.
  void add(std::vector<Fault> faults);

  /// Counts the call, waits if the plan blocks it, and gives the effects that it is to have.
  /// @param subject the text that "of '...'" names, or null
  Effects on_call(eFunction function, const char* subject);

  /// Lets all blocked calls go on.
  void release();

  /// Waits until a call of the function is blocked.
  void wait_until_blocked(eFunction function);

 private:
  Effects collect(eFunction function, const char* subject);
  void let_go();

  std::atomic<bool> m_bActive = false;  // false: no faults, calls needn't take the lock
  std::mutex m_cLock;                   // guards all below
  std::condition_variable m_cChanged;
  std::vector<Fault> m_vFaults;
  std::array<unsigned int, kFunctionCount> m_aCalls = {};
  std::array<unsigned int, kFunctionCount> m_aBlocked = {};
  std::uint64_t m_nReleases = 0;
};

}  // namespace Osv::simulator
