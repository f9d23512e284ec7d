#pragma once

#include <pthread.h>

#include <functional>
#include <future>
#include <memory>
#include <thread>
#include <type_traits>
#include <utility>

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

/// Runs an action once, while it lives, when the thread that made it is about to lock a mutex for
/// the `nth` time, the first being 1. One object on a thread.
class BeforeLock {
 public:
  BeforeLock(pthread_mutex_t* mutex, int nth, std::function<void()> act);
  ~BeforeLock();
  BeforeLock(const BeforeLock&) = delete;
  BeforeLock& operator=(const BeforeLock&) = delete;
};

/// Starts `action` on a thread of its own, and returns when that has ended or has to wait for a
/// mutex that another thread holds.
template <typename Action>
std::thread go_as_far_as_locks_let(Action action) {
  auto stuck = std::make_shared<std::promise<void>>();
  std::thread thread([stuck, action] {
    bool told = false;
    const auto tell = [&] {
      if (!std::exchange(told, true)) {
        stuck->set_value();
      }
    };
    {
      const WaitNotice notice(tell);
      action();
    }
    tell();
  });
  stuck->get_future().wait();
  return thread;
}

}  // namespace Osv::testing_support
