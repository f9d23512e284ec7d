#include "driver/logging_callback.h"

#include <cstdint>
#include <cstring>

#include "driver/ostrevan_hvk3_sdk.h"
#include "foundation/exceptions.h"

namespace Osv::lx {
namespace {

constexpr std::size_t kPathPosition = 256;
constexpr std::size_t kLevelPosition = 768;
constexpr unsigned short kTraceLevel = 5;

bool s_bScannerLogging = false;

void require(bool accepted) {
  if (!accepted) {
    throw CXSystemException();
  }
}

void start_logging(ClFutronicBaseSDK& device, const char* path) {
  require(device.LoggingEnable(kTraceLevel, path));
  s_bScannerLogging = true;
}

void stop_logging(ClFutronicBaseSDK& device) {
  require(device.LoggingDisable());
  s_bScannerLogging = false;
}

void change_level(ClFutronicBaseSDK& device, const char* level) {
  std::uint16_t value = 0;
  std::memcpy(&value, level, sizeof(value));
  require(device.LoggingEnable(value, nullptr));
}

}  // namespace

ClOstrevanHVK3SDK* ClOstrevanHVK3SDK::m_pCBData = nullptr;
CXMutex ClOstrevanHVK3SDK::m_cCBMutex;

unsigned long CBLoggingFacility(OsvLFCBEventstag event, void* data) {
  const ClOstrevanHVK3SDK::Guard guard(ClOstrevanHVK3SDK::m_cCBMutex);
  if (ClOstrevanHVK3SDK::m_pCBData == nullptr) {
    return 0;
  }
  ClFutronicBaseSDK& device = *ClOstrevanHVK3SDK::m_pCBData->m_pScanner;
  const auto* const bytes = static_cast<const char*>(data);
  try {
    if (event == OsvLFCBStart && !s_bScannerLogging && bytes != nullptr) {
      start_logging(device, bytes + kPathPosition);
    } else if (event == OsvLFCBStop && s_bScannerLogging) {
      stop_logging(device);
    } else if (event == OsvLFCBLevel && s_bScannerLogging && bytes != nullptr) {
      change_level(device, bytes + kLevelPosition);
    }
  } catch (const ClLXException& failure) {
    return static_cast<unsigned long>(failure.GetErrorNumber());
  }
  return 0;
}

}  // namespace Osv::lx
