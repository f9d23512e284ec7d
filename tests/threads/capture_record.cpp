#include "threads/capture_record.h"

#include <chrono>

namespace Osv::threads {
namespace {

// Far beyond anything that works; a test that waits in vain is to fail and not to hang.
constexpr std::chrono::seconds kPatience{60};

std::size_t index_of(eEvent kind) { return static_cast<std::size_t>(kind); }

}  // namespace

void CaptureRecord::on_start(int /*handle*/, unsigned int /*channel*/, void* user) {
  self(user).note(eEvent::Start);
}

void CaptureRecord::on_stop(int /*handle*/, unsigned int /*channel*/, void* user) {
  self(user).note(eEvent::Stop);
}

void CaptureRecord::on_live(int /*handle*/, unsigned int /*channel*/, unsigned char* /*image*/,
                            void* user) {
  self(user).note(eEvent::Live);
}

void CaptureRecord::on_finger(int /*handle*/, unsigned int /*channel*/, int /*type*/,
                              unsigned char* /*image*/, void* user) {
  self(user).note(eEvent::Finger);
}

void CaptureRecord::on_error(int /*handle*/, unsigned int /*channel*/, const char* /*text*/,
                             void* user) {
  self(user).note(eEvent::Error);
}

void CaptureRecord::note(eEvent kind) {
  int number = 0;
  {
    const std::lock_guard<std::mutex> lock(m_cLock);
    const bool started = m_nCounts[index_of(eEvent::Start)] != 0;
    const bool stopped = m_nCounts[index_of(eEvent::Stop)] != 0;
    m_nUnframed += started == (kind == eEvent::Start) || stopped ? 1 : 0;
    m_nLate += m_bClosed ? 1 : 0;
    number = ++m_nCounts[index_of(kind)];
    m_cChanged.notify_all();
  }
  if (inside != nullptr) {
    inside(kind, number);
  }
}

bool CaptureRecord::wait_for(eEvent kind, int count) {
  std::unique_lock<std::mutex> lock(m_cLock);
  return m_cChanged.wait_for(lock, kPatience, [&] { return m_nCounts[index_of(kind)] >= count; });
}

void CaptureRecord::close() {
  const std::lock_guard<std::mutex> lock(m_cLock);
  m_bClosed = true;
}

int CaptureRecord::count(eEvent kind) const {
  const std::lock_guard<std::mutex> lock(m_cLock);
  return m_nCounts[index_of(kind)];
}

std::string CaptureRecord::complaint() const {
  const std::lock_guard<std::mutex> lock(m_cLock);
  const int starts = m_nCounts[index_of(eEvent::Start)];
  const int stops = m_nCounts[index_of(eEvent::Stop)];
  std::string text;
  if (starts != stops || starts > 1) {
    text += std::to_string(starts) + " starts and " + std::to_string(stops) + " stops; ";
  }
  if (m_nUnframed != 0) {
    text += std::to_string(m_nUnframed) + " not between start and stop; ";
  }
  if (m_nLate != 0) {
    text += std::to_string(m_nLate) + " behind the client's stop";
  }
  return text;
}

}  // namespace Osv::threads
