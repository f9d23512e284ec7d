#pragma once

#include <pthread.h>

#include "foundation/mutex.h"
#include "foundation/relaxed.h"

/// @file
/// The driver's lock under a client's event callback.

namespace Osv::lx {

/// Knows which thread is inside the event callback, with the driver's lock held once for each event
/// that it is in: one within the other when the callback takes an image.
class CXEventLock {
 public:
  /// For as long as the callback runs; the calling thread holds the lock.
  class Inside {
   public:
    explicit Inside(CXEventLock& events);
    ~Inside();
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;

   private:
    CXEventLock& m_cEvents;
  };

  /// Lets go of the lock if the calling thread is inside the callback, and takes it again at the
  /// end: what waits for a worker meanwhile doesn't wait for one that wants this lock. Nothing of
  /// a frame is left to be done behind its event that another frame could disturb.
  class Pause {
   public:
    explicit Pause(CXEventLock& events);
    ~Pause();
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;

   private:
    CXEventLock& m_cEvents;
    const unsigned int m_nDepth;
  };

  explicit CXEventLock(CXMutex& lock) : m_cLock(lock) {}

  /// Whether the calling thread is inside the callback.
  bool IsInside() const { return pthread_equal(pthread_self(), m_hThread) != 0; }

 private:
  void Enter(unsigned int events);
  unsigned int Leave(unsigned int events);

  CXMutex& m_cLock;
  TXRelaxed<pthread_t> m_hThread = 0;  // 0 when nobody is inside; written with m_cLock held
  unsigned int m_nDepth = 0;           // guarded by m_cLock
};

}  // namespace Osv::lx
