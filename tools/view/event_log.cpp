#include "view/event_log.h"

#include <poll.h>
#include <unistd.h>

#include <iostream>
#include <utility>

#include "hvk3/failure.h"

namespace hvk3::view {

EventLog::EventLog(bool wanted, std::chrono::milliseconds patience)
    : m_bWanted(wanted), m_cPatience(patience) {
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
    keep(line);
  }
  m_cChanged.notify_one();
}

void EventLog::keep(const std::string& line) {
  if (m_cLines.size() < kMost) {
    m_cLines.push_back(line);
    m_nLost = 0;
    return;
  }
  m_nLost += m_nLost == 0 ? 2 : 1;  // first of all the line that gives its place
  m_cLines.back() = "lost " + std::to_string(m_nLost);
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
  if (!m_bBroken && !(has_room() && std::cout << line + '\n' << std::flush)) {
    m_bBroken = true;
  }
}

/// Waits until somebody reads; for the end, that is not for ever.
bool EventLog::has_room() const {
  constexpr int kTick = 50;
  std::chrono::milliseconds left = m_cPatience;
  pollfd output = {STDOUT_FILENO, POLLOUT, 0};
  while (::poll(&output, 1, kTick) <= 0) {
    if (m_bClosed && (left -= std::chrono::milliseconds(kTick)) <= left.zero()) {
      return false;
    }
  }
  return true;
}

void EventLog::check() const {
  if (m_bBroken) {
    throw Failure(ExitStatus::OutputFailed, "standard output can't be written");
  }
}

}  // namespace hvk3::view
