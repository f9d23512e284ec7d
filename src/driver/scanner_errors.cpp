#include <array>

#include "driver/ostrevan_hvk3_sdk.h"
#include "foundation/exceptions.h"
#include "foundation/logging_client.h"
#include "ostrevanhvk3/errors.h"

namespace Osv::lx {
namespace {

constexpr unsigned long kErrorDeviceGone = 31;
constexpr unsigned long kErrorNoImage = 4306;
constexpr unsigned long kErrorImageUsable = 0x20000001;

/// A number of the scanner that has a text of its own for the client.
struct ScannerText {
  unsigned long number;
  unsigned long stored;
  const char* text;
};

constexpr std::array<ScannerText, 4> kScannerTexts = {{
    {error_number::ScannerCanceled, error_number::ScannerCanceled, error_text::ScannerCanceled},
    {error_number::ScannerHardware, error_number::ScannerHardware, error_text::ScannerHardware},
    {error_number::ScannerFirmware, error_number::ScannerFirmware, error_text::ScannerFirmware},
    {error_number::ScannerAuthorization, error_number::AuthorizationCode,
     error_text::ScannerAuthorization},
}};

}  // namespace

bool ClOstrevanHVK3SDK::CheckScannerError(unsigned long error) {
  if (error == error_number::NotConnected || error == kErrorDeviceGone) {
    UninitializeScanner();
    const std::string text = "KR9 scanner is disconnected from the host, error: " +
                             std::to_string(error_number::NotConnected);
    SetLastFGError(error, text);
    throw ClLXException(text.c_str(), error_number::NotConnected);
  }
  if (error == kErrorNoImage) {
    return true;
  }
  if (error == kErrorImageUsable) {
    return false;
  }
  const std::string text = "KR9 scanner. Scanner error: " + std::to_string(error);
  OSV_LOG(OsvLFError, "%s", text.c_str());
  SetLastFGError(error, text);
  throw ClLXException(text.c_str(), static_cast<int>(error));
}

unsigned long ClOstrevanHVK3SDK::SetLastFGError(unsigned long number, const std::string& text) {
  OSV_LOG(OsvLFTrace,
          "KR9 scanner. Calling SetLastFGError function. Error number: %d, Error description: %s",
          static_cast<int>(number), text.c_str());
  std::string stored = text;
  for (const ScannerText& known : kScannerTexts) {
    if (number == known.number) {
      stored = known.text;
      number = known.stored;
      break;
    }
  }
  const std::lock_guard<std::mutex> lock(m_cErrorLock);
  m_sLastError.swap(stored);
  m_nLastError = static_cast<unsigned int>(number);
  return number;
}

std::string ClOstrevanHVK3SDK::LastErrorText() const {
  const std::lock_guard<std::mutex> lock(m_cErrorLock);
  return m_sLastError;
}

}  // namespace Osv::lx
