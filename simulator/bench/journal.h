#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <vector>

#include "bench/functions.h"
#include "ostrevanhvk3_simulator/bench.h"

/// @file
/// The journal of all calls.

namespace Osv::simulator {

/// Counts calls, and keeps records of them while it records. Any thread may call it.
class Journal {
 public:
  void record(bool on) { m_bRecording = on; }
  bool recording() const { return m_bRecording; }
  void count_call(eFunction function) { ++m_aCounts[index_of(function)]; }
  unsigned int count(eFunction function) const { return m_aCounts[index_of(function)]; }
  void add(Call call);
  std::vector<Call> calls() const;
  void clear();

 private:
  std::atomic<bool> m_bRecording = false;
  std::array<std::atomic<unsigned int>, kFunctionCount> m_aCounts = {};
  mutable std::mutex m_cLock;  // guards the records
  std::vector<Call> m_vCalls;
};

}  // namespace Osv::simulator
