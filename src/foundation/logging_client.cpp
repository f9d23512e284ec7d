#include "foundation/logging_client.h"

#include <cstddef>
#include <iterator>
#include <new>
#include <utility>

namespace Osv::utilities {
namespace {

constexpr char kLibrary[] = "libostrevanlf.so";

/// Where the one object lives. Nothing destroys it when the plug-in is closed, so it must not take
/// memory that nobody would ever give back.
alignas(ClLoggingFacilityClient) std::byte g_storage[sizeof(ClLoggingFacilityClient)];

}  // namespace

ClLoggingFacilityClient::LogFunction ClLoggingFacilityClient::m_fpLog = nullptr;
ClLoggingFacilityClient::FlushFunction ClLoggingFacilityClient::m_fpFlush = nullptr;
ClLoggingFacilityClient* ClLoggingFacilityClient::m_fpLogInstance = nullptr;

void ClLoggingFacilityClient::Create() {
  if (m_fpLogInstance == nullptr) {
    m_fpLogInstance = ::new (g_storage) ClLoggingFacilityClient;
  }
}

void ClLoggingFacilityClient::Destroy() {
  if (m_fpLogInstance != nullptr) {
    std::exchange(m_fpLogInstance, nullptr)->~ClLoggingFacilityClient();
  }
}

void ClLoggingFacilityClient::Log(OsvLFLogLevelstag /*level*/, const char* /*format*/, ...) {}

ClLoggingFacilityClient::ClLoggingFacilityClient() { Initialize(); }

void ClLoggingFacilityClient::Initialize() {
  Open(kLibrary);
  const SymbolSlot symbols[] = {{"OsvLFLog", &m_fpLog}, {"OsvLFFlush", &m_fpFlush}};
  Resolve(symbols, std::size(symbols));
}

}  // namespace Osv::utilities
