#include "hvk3/failure.h"

#include <algorithm>
#include <array>

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

Failure Failure::interrupted(int signal) {
  Failure failure(ExitStatus::Interrupted, "interrupted");
  failure.m_nSignal = signal;
  return failure;
}

}  // namespace hvk3
