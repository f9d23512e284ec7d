#include "fakefinger/live_detection_lib.h"

#include <iterator>

#include "foundation/exceptions.h"

namespace Osv::lx {
namespace {

constexpr char kLibrary[] = "libostrevanfakefingerdetection.so";
constexpr long kLargerBufferNeeded = -21;
constexpr unsigned long kLongestProperty = 1UL << 24;

/// Whether a code of the evaluation tells a state of the images and no error: -799 to -768.
bool is_state(long code) { return static_cast<unsigned long>(code) + 799 <= 31; }

}  // namespace

CLiveDetectionLib::CLiveDetectionLib() : m_pLibrary(new CXDynamicLibrary) {
  m_pLibrary->Open(kLibrary);
  const SymbolSlot symbols[] = {
      {"FakeFingerDetectionInitialize", &FakeFingerDetectionInitialize},
      {"FakeFingerDetectionUninitialize", &FakeFingerDetectionUninitialize},
      {"FakeFingerDetectionCreateHandle", &FakeFingerDetectionCreateHandle},
      {"FakeFingerDetectionDestroyHandle", &FakeFingerDetectionDestroyHandle},
      {"FakeFingerDetectionReset", &FakeFingerDetectionReset},
      {"FakeFingerDetectionEvaluateLiveliness", &FakeFingerDetectionEvaluateLiveliness},
      {"FakeFingerDetectionSetImage", &FakeFingerDetectionSetImage},
      {"FakeFingerDetectionSetPropertyA", &FakeFingerDetectionSetPropertyA},
      {"FakeFingerDetectionGetPropertyA", &FakeFingerDetectionGetPropertyA},
      {"FakeFingerDetectionGetErrorDescriptionA", &FakeFingerDetectionGetErrorDescriptionA}};
  m_pLibrary->Resolve(symbols, std::size(symbols));
  Check(FakeFingerDetectionInitialize(nullptr));
}

CLiveDetectionLib::~CLiveDetectionLib() { FakeFingerDetectionUninitialize(); }

void* CLiveDetectionLib::Create() {
  void* handle = nullptr;
  Check(FakeFingerDetectionCreateHandle(&handle));
  return handle;
}

long CLiveDetectionLib::Destroy(void** handle) { return FakeFingerDetectionDestroyHandle(handle); }

long CLiveDetectionLib::Reset(void* handle) { return Check(FakeFingerDetectionReset(handle)); }

long CLiveDetectionLib::SetImage(void* handle, EImage kind, const tagBITMAPINFOHEADER* block,
                                 unsigned long size) {
  return Check(FakeFingerDetectionSetImage(handle, kind, block, size));
}

long CLiveDetectionLib::SetProperty(void* handle, const char* name, const char* value) {
  return Check(FakeFingerDetectionSetPropertyA(handle, name, value));
}

std::string CLiveDetectionLib::GetProperty(void* handle, const char* name) {
  unsigned long length = 0;
  const long code = FakeFingerDetectionGetPropertyA(handle, name, nullptr, &length);
  if (code != kLargerBufferNeeded) {
    Check(code);
    return {};
  }
  if (length > kLongestProperty) {
    throw CXMemoryAllocException();
  }
  std::string value(length, '0');
  if (length != 0) {
    Check(FakeFingerDetectionGetPropertyA(handle, name, value.data(), &length));
  }
  return value;
}

double CLiveDetectionLib::EvalLifeness(void* handle, int* state) {
  *state = 0;
  double score = 0.0;
  const long code = FakeFingerDetectionEvaluateLiveliness(handle, &score);
  if (is_state(code)) {
    *state = static_cast<int>(code);
  } else {
    Check(code);
  }
  return score;
}

/// Turns a code other than 0 into an exception.
long CLiveDetectionLib::Check(long code) {
  if (code != 0) {
    throw CLiveDetectionException(FakeFingerDetectionGetErrorDescriptionA(code),
                                  static_cast<int>(code));
  }
  return code;
}

}  // namespace Osv::lx
