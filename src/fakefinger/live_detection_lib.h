#pragma once

#include <string>

#include "foundation/dynamic_library.h"
#include "foundation/value_ptr.h"
#include "ostrevanhvk3/image_block.h"

/// @file
/// The binding of the fake finger detector, a closed library.

namespace Osv::lx {

/// The kind of an image that the detector gets.
enum EImage : int {
  eImageDose = 0,       ///< taken at the configured dose
  eImageBacklight = 1,  ///< taken with the backlight
  eImageDark = 2        ///< taken without light
};

/// Loads and starts the detector for as long as the object lives. Each error code of the detector
/// becomes a `CLiveDetectionException` with the detector's text; -15 is one that callers know.
///
/// No lock: the detector must not be called from two threads at once. Handles must be destroyed
/// before the object goes.
class CLiveDetectionLib {
 public:
  /// @throws CXOtherException -201 for a missing library, -202 for a missing function;
  ///   CLiveDetectionException when the detector does not start
  CLiveDetectionLib();
  ~CLiveDetectionLib();
  CLiveDetectionLib(const CLiveDetectionLib&) = delete;
  CLiveDetectionLib& operator=(const CLiveDetectionLib&) = delete;

  /// A handle for one series of images.
  [[nodiscard]] void* Create();

  /// @return the detector's code, which nobody looks at
  long Destroy(void** handle);

  long Reset(void* handle);

  /// @param size bytes of the whole block
  long SetImage(void* handle, EImage kind, const tagBITMAPINFOHEADER* block, unsigned long size);

  long SetProperty(void* handle, const char* name, const char* value);

  /// The value with the length that the detector told, so a zero byte at its end may be part of it.
  /// @throws CLiveDetectionException, or CXMemoryAllocException for a length beyond all reason
  [[nodiscard]] std::string GetProperty(void* handle, const char* name);

  /// The score of the images. Codes from -799 to -768 are no errors: they go to `state`, which is 0
  /// otherwise, and nothing here interprets them.
  double EvalLifeness(void* handle, int* state);

 private:
  long Check(long code);

  TXValuePtr<CXDynamicLibrary> m_pLibrary;
  long (*FakeFingerDetectionInitialize)(void* reserved) = nullptr;
  long (*FakeFingerDetectionUninitialize)() = nullptr;
  long (*FakeFingerDetectionCreateHandle)(void** handle) = nullptr;
  long (*FakeFingerDetectionDestroyHandle)(void** handle) = nullptr;
  long (*FakeFingerDetectionReset)(void* handle) = nullptr;
  long (*FakeFingerDetectionEvaluateLiveliness)(void* handle, double* score) = nullptr;
  long (*FakeFingerDetectionSetImage)(void* handle, int kind, const tagBITMAPINFOHEADER* block,
                                      unsigned long size) = nullptr;
  long (*FakeFingerDetectionSetPropertyA)(void* handle, const char* name,
                                          const char* value) = nullptr;
  long (*FakeFingerDetectionGetPropertyA)(void* handle, const char* name, char* buffer,
                                          unsigned long* length) = nullptr;
  char* (*FakeFingerDetectionGetErrorDescriptionA)(long code) = nullptr;
};

}  // namespace Osv::lx
