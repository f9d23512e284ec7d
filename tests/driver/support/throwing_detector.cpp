// A fake finger detector that throws what a closed library is that can't be loaded: at its
// start-up, or with HVK3_STARTS when its security level is set. Functions behind that are never
// called.

#include "foundation/exceptions.h"

#define HVK3_EXPORT extern "C" [[gnu::visibility("default")]]

HVK3_EXPORT long FakeFingerDetectionInitialize(void* /*reserved*/) {
#ifdef HVK3_STARTS
  return 0;
#else
  throw Osv::CXDynamicLibraryException();
#endif
}
HVK3_EXPORT long FakeFingerDetectionUninitialize() { return 0; }
HVK3_EXPORT long FakeFingerDetectionCreateHandle(void** /*handle*/) { return 0; }
HVK3_EXPORT long FakeFingerDetectionDestroyHandle(void** /*handle*/) { return 0; }
HVK3_EXPORT long FakeFingerDetectionSetPropertyA(void* /*handle*/, const char* /*name*/,
                                                 const char* /*value*/) {
  throw Osv::CXDynamicLibraryException();
}
HVK3_EXPORT void FakeFingerDetectionReset() {}
HVK3_EXPORT void FakeFingerDetectionEvaluateLiveliness() {}
HVK3_EXPORT void FakeFingerDetectionSetImage() {}
HVK3_EXPORT void FakeFingerDetectionGetPropertyA() {}
HVK3_EXPORT void FakeFingerDetectionGetErrorDescriptionA() {}
