#pragma once

#include <pthread.h>

/// @file
/// The recursive mutex of channel, callbacks, driver and device.

namespace Osv {

/// A recursive POSIX mutex; lock it with `std::lock_guard<CXMutex>`.
class CXMutex {
 public:
  /// @throws CXSystemException with `errno` as it stands when the mutex can't be set up
  CXMutex();
  ~CXMutex();
  CXMutex(const CXMutex&) = delete;
  CXMutex& operator=(const CXMutex&) = delete;

  void lock() { pthread_mutex_lock(&m_hMutex); }
  void unlock() { pthread_mutex_unlock(&m_hMutex); }

 private:
  pthread_mutex_t m_hMutex;
};

}  // namespace Osv
