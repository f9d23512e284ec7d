#include "view/event_log.h"

#include <iostream>

namespace hvk3::view {

void EventLog::tell(const std::string& line) {
  if (!m_bWanted) {
    return;
  }
  const std::lock_guard<std::mutex> lock(m_cLock);
  if (!(std::cout << line + '\n' << std::flush)) {
    m_bBroken = true;
  }
}

}  // namespace hvk3::view
