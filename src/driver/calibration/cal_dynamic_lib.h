#pragma once

#include <mutex>

#include "foundation/dynamic_library.h"
#include "ostrevanhvk3/image_block.h"

/// @file
/// The binding of the calibration engine.

namespace Osv::lx {

/// The functions of the calibration engine, all of them mandatory. Codes are 0 for success and
/// negative for failure.
class CXCalDynamicLib : public CXDynamicLibrary {
 public:
  /// @throws CXOtherException -201 without the library, -202 without one of its functions
  CXCalDynamicLib();
  ~CXCalDynamicLib() override = default;

  /// What the constructor does; closes a library that is open first.
  void Initialize();

  /// Makes a call into the engine while no other one is under way, for whichever instance: during
  /// a reopening one engine is built while another may be correcting a frame. The lock is a leaf.
  template <typename Call>
  static auto Alone(Call call) {
    const std::lock_guard<std::mutex> lock(m_cEngineLock);
    return call();
  }

  void* (*CalibrateCreate)() = nullptr;
  long (*Calibrate)(void* engine, const tagBITMAPINFOHEADER* input, unsigned long inputSize,
                    tagBITMAPINFOHEADER* output, unsigned long* outputSize) = nullptr;
  void (*CalibrateDelete)(void** engine) = nullptr;
  long (*CalibrateSetData)(void* engine, const unsigned char* data, unsigned long size) = nullptr;
  const char* (*CalibrateGetErrorDescription)(long code) = nullptr;
  long (*ContaminationDetection)(void* engine, const tagBITMAPINFOHEADER* bitmap,
                                 unsigned long size, double* level) = nullptr;
  long (*CalibrateSetOption)(void* engine, const char* option) = nullptr;
  long (*CalibrateGetOption)(void* engine, const char* name, char* value,
                             unsigned long* length) = nullptr;

 private:
  static std::mutex m_cEngineLock;
};

}  // namespace Osv::lx
