#pragma once

#include "driver/calibration/cal_dynamic_lib.h"

/// @file
/// One instance of the calibration engine.

namespace Osv::lx {

/// Owns an engine instance; the library must outlive it.
class CXCalibrationHandle {
 public:
  /// @throws std::bad_alloc when the engine has no memory for an instance
  explicit CXCalibrationHandle(CXCalDynamicLib& library);
  ~CXCalibrationHandle();
  CXCalibrationHandle(const CXCalibrationHandle&) = delete;
  CXCalibrationHandle& operator=(const CXCalibrationHandle&) = delete;

  /// Never null.
  void* get() const { return m_hEngine; }

 private:
  CXCalDynamicLib& m_cLibrary;
  void* m_hEngine;
};

}  // namespace Osv::lx
