#include "view/event_log.h"

#include <iostream>
#include <utility>

namespace hvk3::view {

EventLog::EventLog(bool wanted) : m_bWanted(wanted) {
  if (m_bWanted) {
    m_cThread = std::thread([this] { work(); });
  }
}

EventLog::~EventLog() { close(); }

void EventLog::tell(const std::string& line) {
  if (!m_bWanted) {
    return;
  }
  {
    const std::lock_guard<std::mutex> lock(m_cLock);
    m_cLines.push_back(line);
  }
  m_cChanged.notify_one();
}

void EventLog::close() {
  {
    const std::lock_guard<std::mutex> lock(m_cLock);
    m_bClosed = true;
  }
  m_cChanged.notify_one();
  if (m_cThread.joinable()) {
    m_cThread.join();
  }
}

void EventLog::work() {
  std::unique_lock<std::mutex> lock(m_cLock);
  for (;;) {
    m_cChanged.wait(lock, [this] { return m_bClosed || !m_cLines.empty(); });
    if (m_cLines.empty()) {
      return;
    }
    const std::string line = std::move(m_cLines.front());
    m_cLines.pop_front();
    lock.unlock();  // nobody waits for whoever reads
    write(line);
    lock.lock();
  }
}

void EventLog::write(const std::string& line) {
  if (!(std::cout << line + '\n' << std::flush)) {
    m_bBroken = true;
  }
}

}  // namespace hvk3::view
