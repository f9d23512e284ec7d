#include "bench/journal.h"

#include <utility>

namespace Osv::simulator {

void Journal::add(Call call) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  m_vCalls.push_back(std::move(call));
}

std::vector<Call> Journal::calls() const {
  const std::lock_guard<std::mutex> lock(m_cLock);
  return m_vCalls;
}

void Journal::clear() {
  const std::lock_guard<std::mutex> lock(m_cLock);
  m_vCalls.clear();
  for (auto& count : m_aCounts) {
    count = 0;
  }
}

}  // namespace Osv::simulator
