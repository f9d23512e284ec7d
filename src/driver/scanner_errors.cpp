#include <array>
#include <cstdio>
#include <new>

#include "driver/ostrevan_hvk3_sdk.h"
#include "foundation/exceptions.h"
#include "foundation/logging_client.h"
#include "ostrevanhvk3/errors.h"

namespace Osv::lx {
namespace {

constexpr unsigned long kErrorDeviceGone = 31;
constexpr unsigned long kErrorNoImage = 4306;
constexpr unsigned long kErrorImageUsable = 0x20000001;

/// A text with a number behind it, which takes no memory.
class ErrorText {
 public:
  ErrorText(const char* words, unsigned long number) {
    std::snprintf(m_szText.data(), m_szText.size(), "%s%lu", words, number);
  }

  const char* get() const { return m_szText.data(); }

 private:
  std::array<char, 80> m_szText;
};

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

bool is_gone(unsigned long error) {
  return error == error_number::NotConnected || error == kErrorDeviceGone;
}

}  // namespace

bool ClOstrevanHVK3SDK::CheckScannerError(unsigned long error) {
  if (is_gone(error)) {
    UninitializeScanner();
  }
  return JudgeScannerError(error);
}

bool ClOstrevanHVK3SDK::JudgeScannerError(unsigned long error) {
  if (is_gone(error)) {
    const ErrorText text("KR9 scanner is disconnected from the host, error: ",
                         error_number::NotConnected);
    SetLastFGError(error, text.get());
    throw ClLXException(text.get(), error_number::NotConnected);
  }
  if (error == kErrorNoImage) {
    return true;
  }
  if (error == kErrorImageUsable) {
    return false;
  }
  const ErrorText text("KR9 scanner. Scanner error: ", error);
  OSV_LOG(OsvLFError, "%s", text.get());
  SetLastFGError(error, text.get());
  throw ClLXException(text.get(), static_cast<int>(error));
}

unsigned long ClOstrevanHVK3SDK::SetLastFGError(unsigned long number, const std::string& text) {
  return SetLastFGError(number, text.c_str());
}

unsigned long ClOstrevanHVK3SDK::SetLastFGError(unsigned long number, const char* text) {
  OSV_LOG(OsvLFTrace,
          "KR9 scanner. Calling SetLastFGError function. Error number: %d, Error description: %s",
          static_cast<int>(number), text);
  for (const ScannerText& known : kScannerTexts) {
    if (number == known.number) {
      text = known.text;
      number = known.stored;
      break;
    }
  }
  const std::lock_guard<std::mutex> lock(m_cErrorLock);
  StoreText(text);
  m_nLastError = static_cast<unsigned int>(number);
  return number;
}

/// With `m_cErrorLock` held. What the room that was kept does not take, and no memory is left for,
/// is cut.
void ClOstrevanHVK3SDK::StoreText(const char* text) noexcept {
  try {
    m_sLastError = text;
  } catch (const std::bad_alloc&) {
    m_sLastError.assign(text, m_sLastError.capacity());
  }
}

std::string ClOstrevanHVK3SDK::LastErrorText() const {
  return WithLastErrorText([](const char* text) { return std::string(text); });
}

}  // namespace Osv::lx
