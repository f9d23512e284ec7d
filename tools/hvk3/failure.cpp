#include "hvk3/failure.h"

#include "ostrevanhvk3/errors.h"

namespace hvk3 {
namespace {

ExitStatus status_of(long number) {
  namespace error_number = Osv::lx::error_number;
  return number == error_number::NotConnected || number == error_number::DeviceIndex
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
