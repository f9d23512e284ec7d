#include "hvk3/failure.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

#include "ostrevanhvk3/errors.h"

namespace hvk3 {
namespace {

ExitStatus status_of(long number) {
  namespace error_number = Osv::lx::error_number;
  // The scanner library's number of a device that was unplugged; in some places the plug-in passes
  // it on as it is.
  constexpr long kDeviceGone = 31;
  constexpr std::array kNoScanner = {long{error_number::NotConnected},
                                     long{error_number::DeviceIndex}, kDeviceGone};
  return std::find(kNoScanner.begin(), kNoScanner.end(), number) != kNoScanner.end()
             ? ExitStatus::NoScanner
             : ExitStatus::ScannerFailed;
}

}  // namespace

Failure::Failure(long number, const std::string& text)
    : std::runtime_error(text), m_eStatus(status_of(number)), m_nNumber(number) {}

Failure Failure::of_capture(const std::string& callback_text) {
  constexpr std::string_view kMark = " error: ";
  const std::size_t mark = callback_text.rfind(kMark);
  if (mark == std::string::npos) {
    return {ExitStatus::ScannerFailed, callback_text};
  }
  return {std::atol(callback_text.c_str() + mark + kMark.size()), callback_text.substr(0, mark)};
}

Failure Failure::interrupted(int signal) {
  Failure failure(ExitStatus::Interrupted, "interrupted");
  failure.m_nSignal = signal;
  return failure;
}

}  // namespace hvk3
