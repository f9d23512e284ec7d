#include "foundation/logging_client.h"

#include <iterator>

namespace Osv::utilities {
namespace {

constexpr char kLibrary[] = "libostrevanlf.so";

}  // namespace

ClLoggingFacilityClient::LogFunction ClLoggingFacilityClient::m_fpLog = nullptr;
ClLoggingFacilityClient::FlushFunction ClLoggingFacilityClient::m_fpFlush = nullptr;
ClLoggingFacilityClient* ClLoggingFacilityClient::m_fpLogInstance = nullptr;

void ClLoggingFacilityClient::Create() {
  if (m_fpLogInstance == nullptr) {
    m_fpLogInstance = new ClLoggingFacilityClient;
  }
}

void ClLoggingFacilityClient::Destroy() {
  delete m_fpLogInstance;
  m_fpLogInstance = nullptr;
}

void ClLoggingFacilityClient::Log(OsvLFLogLevelstag /*level*/, const char* /*format*/, ...) {}

ClLoggingFacilityClient::ClLoggingFacilityClient() { Initialize(); }

void ClLoggingFacilityClient::Initialize() {
  Open(kLibrary);
  const SymbolSlot symbols[] = {{"OsvLFLog", &m_fpLog}, {"OsvLFFlush", &m_fpFlush}};
  Resolve(symbols, std::size(symbols));
}

}  // namespace Osv::utilities
