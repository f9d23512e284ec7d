#include "driver/calibration/calibration_handle.h"

#include <new>

namespace Osv::lx {

CXCalibrationHandle::CXCalibrationHandle(CXCalDynamicLib& library)
    : m_cLibrary(library),
      m_hEngine(CXCalDynamicLib::Alone([&] { return library.CalibrateCreate(); })) {
  if (m_hEngine == nullptr) {
    throw std::bad_alloc();
  }
}

CXCalibrationHandle::~CXCalibrationHandle() {
  if (m_hEngine != nullptr) {
    CXCalDynamicLib::Alone([this] { m_cLibrary.CalibrateDelete(&m_hEngine); });
    m_hEngine = nullptr;
  }
}

}  // namespace Osv::lx
