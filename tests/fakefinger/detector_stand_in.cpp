// The stand-in of the detector: each function forwards to the detector that the test scripted.
// HVK3_FUNCTIONS tells how many of the ten functions there are, in the order of their look-up.

#include "fakefinger/scripted_detector.h"

#define HVK3_EXPORT extern "C" __attribute__((visibility("default")))

using Osv::testing_support::detector;

namespace {

__attribute__((constructor)) void loaded() { detector().note("loaded"); }
__attribute__((destructor)) void unloaded() { detector().note("unloaded"); }

}  // namespace

#if HVK3_FUNCTIONS > 0
HVK3_EXPORT long FakeFingerDetectionInitialize(void* reserved) {
  return detector().Initialize(reserved);
}
#endif
#if HVK3_FUNCTIONS > 1
HVK3_EXPORT long FakeFingerDetectionUninitialize() { return detector().Uninitialize(); }
#endif
#if HVK3_FUNCTIONS > 2
HVK3_EXPORT long FakeFingerDetectionCreateHandle(void** handle) {
  return detector().CreateHandle(handle);
}
#endif
#if HVK3_FUNCTIONS > 3
HVK3_EXPORT long FakeFingerDetectionDestroyHandle(void** handle) {
  return detector().DestroyHandle(handle);
}
#endif
#if HVK3_FUNCTIONS > 4
HVK3_EXPORT long FakeFingerDetectionReset(void* handle) { return detector().Reset(handle); }
#endif
#if HVK3_FUNCTIONS > 5
HVK3_EXPORT long FakeFingerDetectionEvaluateLiveliness(void* handle, double* score) {
  return detector().EvaluateLiveliness(handle, score);
}
#endif
#if HVK3_FUNCTIONS > 6
HVK3_EXPORT long FakeFingerDetectionSetImage(void* handle, int kind,
                                             const tagBITMAPINFOHEADER* block, unsigned long size) {
  return detector().SetImage(handle, kind, block, size);
}
#endif
#if HVK3_FUNCTIONS > 7
HVK3_EXPORT long FakeFingerDetectionSetPropertyA(void* handle, const char* name,
                                                 const char* value) {
  return detector().SetProperty(handle, name, value);
}
#endif
#if HVK3_FUNCTIONS > 8
HVK3_EXPORT long FakeFingerDetectionGetPropertyA(void* handle, const char* name, char* buffer,
                                                 unsigned long* length) {
  return detector().GetProperty(handle, name, buffer, length);
}
#endif
#if HVK3_FUNCTIONS > 9
HVK3_EXPORT char* FakeFingerDetectionGetErrorDescriptionA(long code) {
  return detector().GetErrorDescription(code);
}
#endif
