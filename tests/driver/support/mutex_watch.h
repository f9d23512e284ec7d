#pragma once

#include <pthread.h>

#include <functional>
#include <thread>
#include <type_traits>

#include "foundation/mutex.h"

/// @file
/// A look at the system's mutex behind a `CXMutex`.

namespace Osv::testing_support {

inline pthread_mutex_t* system_mutex(CXMutex& mutex) {
  // The system's mutex is the first and only member.
  static_assert(std::is_standard_layout_v<CXMutex> && sizeof(CXMutex) == sizeof(pthread_mutex_t));
  return reinterpret_cast<pthread_mutex_t*>(&mutex);
}

/// Whether a thread holds the mutex, this one included.
inline bool is_held(CXMutex& mutex) {
  bool held = true;
  std::thread([&] {
    held = pthread_mutex_trylock(system_mutex(mutex)) != 0;
    if (!held) {
      pthread_mutex_unlock(system_mutex(mutex));
    }
  }).join();
  return held;
}

/// Counts how often a mutex is locked while it lives. One object at a time.
class LockCount {
 public:
  explicit LockCount(CXMutex& mutex);
  ~LockCount();
  LockCount(const LockCount&) = delete;
  LockCount& operator=(const LockCount&) = delete;

  int so_far() const;
};

/// Tells once, while it lives, when the thread that made it has to wait for a mutex that another
/// one holds. One object on a thread.
class WaitNotice {
 public:
  explicit WaitNotice(std::function<void()> tell);
  ~WaitNotice();
  WaitNotice(const WaitNotice&) = delete;
  WaitNotice& operator=(const WaitNotice&) = delete;
};

}  // namespace Osv::testing_support
