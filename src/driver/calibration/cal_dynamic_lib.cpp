#include "driver/calibration/cal_dynamic_lib.h"

#include <iterator>

#include "foundation/logging_client.h"

namespace Osv::lx {
namespace {

constexpr char kLibrary[] = "libostrevancalibratesdk.so";

}  // namespace

std::mutex CXCalDynamicLib::m_cEngineLock;

CXCalDynamicLib::CXCalDynamicLib() { Initialize(); }

void CXCalDynamicLib::Initialize() {
  // The message names the engine by its file on another platform; log readers look for this text.
  OSV_LOG(OsvLFTrace, "KR9 scanner. Load OstrevanCalibrateSDK.dll");
  Open(kLibrary);
  const SymbolSlot symbols[] = {
      {"CalibrateCreate", &CalibrateCreate},
      {"Calibrate", &Calibrate},
      {"CalibrateDelete", &CalibrateDelete},
      {"CalibrateSetData", &CalibrateSetData},
      {"CalibrateGetErrorDescription", &CalibrateGetErrorDescription},
      {"ContaminationDetection", &ContaminationDetection},
      {"CalibrateSetOption", &CalibrateSetOption},
      {"CalibrateGetOption", &CalibrateGetOption},
  };
  Resolve(symbols, std::size(symbols));
}

}  // namespace Osv::lx
