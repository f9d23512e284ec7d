#pragma once

#include <mutex>

#include "ostrevanhvk3/callbacks.h"

/// @file
/// The client's event callback.

namespace Osv::lx {

/// Holds the event callback. A client sets it while the worker may fire it, so the three values
/// change together under a leaf mutex that is not held during the callback.
class ClXEvents {
 public:
  /// Null switches events off.
  void Set(int handle, ClEventCallback callback, void* user);

  /// Calls the callback, if there is one, on the calling thread.
  void Fire(unsigned int channel, eFG_HVK3_Events type);

 private:
  std::mutex m_cLock;
  int m_nHandle = 0;
  ClEventCallback m_pfnCallback = nullptr;
  void* m_pUserData = nullptr;
};

}  // namespace Osv::lx
