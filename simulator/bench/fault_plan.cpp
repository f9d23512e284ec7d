#include "bench/fault_plan.h"

#include <limits>
#include <utility>

namespace Osv::simulator {

void FaultPlan::set(std::vector<Fault> faults) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  m_vFaults = std::move(faults);
  m_aCalls = {};
  m_bActive = !m_vFaults.empty();
  let_go();  // under the same lock: a call that the new plan blocks is to stay blocked
}

void FaultPlan::add(std::vector<Fault> faults) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  for (Fault& fault : faults) {
    const unsigned int calls = m_aCalls[index_of(fault.function)];
    constexpr unsigned int kEnd = std::numeric_limits<unsigned int>::max();
    fault.first += calls;
    fault.last = fault.last > kEnd - calls ? kEnd : fault.last + calls;
    m_vFaults.push_back(std::move(fault));
  }
  m_bActive = !m_vFaults.empty();
}

Effects FaultPlan::on_call(eFunction function, const char* subject) {
  if (!m_bActive) {
    return {};
  }
  std::unique_lock<std::mutex> lock(m_cLock);
  Effects effects = collect(function, subject);
  if (effects.blocks) {
    const std::uint64_t releases = m_nReleases;
    ++m_aBlocked[index_of(function)];
    m_cChanged.notify_all();
    m_cChanged.wait(lock, [&] { return m_nReleases != releases; });
    --m_aBlocked[index_of(function)];
  }
  return effects;
}

Effects FaultPlan::collect(eFunction function, const char* subject) {
  Effects effects;
  const unsigned int call = ++m_aCalls[index_of(function)];
  for (const Fault& fault : m_vFaults) {
    if (fault.function == function && fault.first <= call && call <= fault.last &&
        (!fault.subject.has_value() || (subject != nullptr && *fault.subject == subject))) {
      effects.add(fault.effects);
    }
  }
  return effects;
}

void FaultPlan::release() {
  const std::lock_guard<std::mutex> lock(m_cLock);
  let_go();
}

void FaultPlan::let_go() {
  ++m_nReleases;
  m_cChanged.notify_all();
}

void FaultPlan::wait_until_blocked(eFunction function) {
  std::unique_lock<std::mutex> lock(m_cLock);
  // A call that was released but hasn't yet woken counts still; it is no matter for a test, which
  // waits for a call before it releases it.
  m_cChanged.wait(lock, [&] { return m_aBlocked[index_of(function)] > 0; });
}

}  // namespace Osv::simulator
