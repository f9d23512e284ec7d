#include "driver/calibration/disable_dyn_calibration.h"

#include <exception>

#include "foundation/logging_client.h"

namespace Osv::lx {

CXDisableDynCalibration::CXDisableDynCalibration(CXCalibration& calibration)
    : m_cCalibration(calibration) {
  m_cCalibration.EnableDynCalibration(false);
}

CXDisableDynCalibration::~CXDisableDynCalibration() {
  try {
    m_cCalibration.EnableDynCalibration(true);
  } catch (const std::exception& failure) {
    OSV_LOG(OsvLFError, "KR9 scanner, failed to enbalbe dynamic calibration. Message: %s",
            failure.what());
  }
}

}  // namespace Osv::lx
