// A fake finger detector whose start-up throws what a failed start-up of a closed library is. None
// of the other functions is called.

#include "foundation/exceptions.h"

#define HVK3_EXPORT extern "C" [[gnu::visibility("default")]]

HVK3_EXPORT long FakeFingerDetectionInitialize(void* /*reserved*/) {
  throw Osv::CXDynamicLibraryException();
}
HVK3_EXPORT void FakeFingerDetectionUninitialize() {}
HVK3_EXPORT void FakeFingerDetectionCreateHandle() {}
HVK3_EXPORT void FakeFingerDetectionDestroyHandle() {}
HVK3_EXPORT void FakeFingerDetectionReset() {}
HVK3_EXPORT void FakeFingerDetectionEvaluateLiveliness() {}
HVK3_EXPORT void FakeFingerDetectionSetImage() {}
HVK3_EXPORT void FakeFingerDetectionSetPropertyA() {}
HVK3_EXPORT void FakeFingerDetectionGetPropertyA() {}
HVK3_EXPORT void FakeFingerDetectionGetErrorDescriptionA() {}
