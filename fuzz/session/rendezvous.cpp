#include "session/rendezvous.h"

namespace Osv::fuzz {

void Rendezvous::let_run() {
  const std::lock_guard<std::mutex> lock(m_lock);
  m_state = State::Running;
  m_changed.notify_all();
}

void Rendezvous::wait() {
  std::unique_lock<std::mutex> lock(m_lock);
  m_changed.wait(lock, [&] { return m_state != State::Running; });
}

void Rendezvous::begin_joining() {
  const std::lock_guard<std::mutex> lock(m_lock);
  m_joining = true;
  m_changed.notify_all();
}

void Rendezvous::end_joining() {
  {
    const std::lock_guard<std::mutex> lock(m_lock);
    m_joining = false;
  }
  wait();
}

void Rendezvous::rest() {
  std::unique_lock<std::mutex> lock(m_lock);
  if (!m_joining) {
    m_state = State::Resting;
    m_changed.notify_all();
    m_changed.wait(lock, [&] { return m_joining || m_state == State::Running; });
    m_state = State::Running;
  }
}

void Rendezvous::end() {
  const std::lock_guard<std::mutex> lock(m_lock);
  m_state = State::Ended;
  m_changed.notify_all();
}

}  // namespace Osv::fuzz
