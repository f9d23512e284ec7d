#pragma once

#include <pthread.h>

#include <functional>
#include <thread>
#include <type_traits>

#include "foundation/mutex.h"

/// @file
/// A look at the system's mutexes. The executable is linked with `--wrap` for the functions that
/// lock and unlock them.

namespace Osv::testing_support {

inline pthread_mutex_t* system_mutex(CXMutex& mutex) {
  // The system's mutex is the first and only member.
  static_assert(std::is_standard_layout_v<CXMutex> && sizeof(CXMutex) == sizeof(pthread_mutex_t));
  return reinterpret_cast<pthread_mutex_t*>(&mutex);
}

/// Whether a thread holds the mutex, this one included.
inline bool is_held(pthread_mutex_t* mutex) {
  bool held = true;
  std::thread([&] {
    held = pthread_mutex_trylock(mutex) != 0;
    if (!held) {
      pthread_mutex_unlock(mutex);
    }
  }).join();
  return held;
}

inline bool is_held(CXMutex& mutex) { return is_held(system_mutex(mutex)); }

/// Of the mutexes that this thread holds the one locked last, null for none. A function called out
/// of a library's stand-in finds the mutex here that its caller holds over the call.
pthread_mutex_t* innermost_held();

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
