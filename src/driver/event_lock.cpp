#include "driver/event_lock.h"

namespace Osv::lx {

void CXEventLock::Enter(unsigned int events) {
  m_nDepth += events;
  m_hThread = pthread_self();
}

/// @return how many events the thread was in
unsigned int CXEventLock::Leave(unsigned int events) {
  const unsigned int depth = m_nDepth;
  m_nDepth -= events;
  if (m_nDepth == 0) {
    m_hThread = 0;
  }
  return depth;
}

CXEventLock::Inside::Inside(CXEventLock& events) : m_cEvents(events) { m_cEvents.Enter(1); }

CXEventLock::Inside::~Inside() { m_cEvents.Leave(1); }

CXEventLock::Pause::Pause(CXEventLock& events)
    : m_cEvents(events), m_nDepth(events.IsInside() ? events.Leave(events.m_nDepth) : 0) {
  for (unsigned int i = 0; i < m_nDepth; ++i) {
    m_cEvents.m_cLock.unlock();
  }
}

CXEventLock::Pause::~Pause() {
  for (unsigned int i = 0; i < m_nDepth; ++i) {
    m_cEvents.m_cLock.lock();
  }
  if (m_nDepth != 0) {
    m_cEvents.Enter(m_nDepth);
  }
}

}  // namespace Osv::lx
