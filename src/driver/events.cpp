#include "driver/events.h"

#include "foundation/logging_client.h"

namespace Osv::lx {

void ClXEvents::Set(int handle, ClEventCallback callback, void* user) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  m_nHandle = handle;
  m_pfnCallback = callback;
  m_pUserData = user;
}

void ClXEvents::Fire(unsigned int channel, eFG_HVK3_Events type) {
  std::unique_lock<std::mutex> lock(m_cLock);
  const int handle = m_nHandle;
  const ClEventCallback callback = m_pfnCallback;
  void* const user = m_pUserData;
  lock.unlock();
  if (callback == nullptr) {
    return;
  }
  OSV_LOG(OsvLFTrace,
          "KR9 scanner. Occurring of KR9-scanner event. Handle: %d, channel: %d, Type: %d", handle,
          channel, type);
  callback(handle, channel, eFG_HVK3, type, user);
}

}  // namespace Osv::lx
