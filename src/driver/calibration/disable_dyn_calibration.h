#pragma once

#include "driver/calibration/calibration.h"

/// @file
/// Switches dynamic calibration off for a scope.

namespace Osv::lx {

/// Dynamic calibration is off while an object of this class lives.
class CXDisableDynCalibration {
 public:
  explicit CXDisableDynCalibration(CXCalibration& calibration);

  /// Switches it on again; a failure of the engine is logged and goes no further.
  ~CXDisableDynCalibration();

  CXDisableDynCalibration(const CXDisableDynCalibration&) = delete;
  CXDisableDynCalibration& operator=(const CXDisableDynCalibration&) = delete;

 private:
  CXCalibration& m_cCalibration;
};

}  // namespace Osv::lx
