#include <array>
#include <atomic>
#include <memory>
#include <string>

#include "libraries/coded_call.h"
#include "libraries/description.h"
#include "libraries/detector_api.h"
#include "libraries/liveness.h"
#include "libraries/registry.h"
#include "libraries/text_out.h"

/// @file
/// The stand-in for the fake finger detector: its functions over detectors.

namespace Osv::simulator {
namespace {

using Detectors = Registry<LivenessDetector>;

Detectors& detectors() {
  static Detectors all(eInstance::Detector);
  return all;
}

// Whether the library is started.
std::atomic<bool> g_bStarted = false;

/// Work on the detector of a handle with an argument that must not be null.
template <class Work>
long on_detector(RecordedCall& call, void* handle, const void* argument, Work work) {
  return answer(call, [&]() -> long {
    const std::shared_ptr<LivenessDetector> detector = detectors().find(handle);
    if (detector == nullptr) {
      return kDetectorBadHandle;
    }
    return argument == nullptr ? kDetectorBadArgument : work(*detector);
  });
}

const char* kind_in_words(std::int32_t kind) {
  constexpr std::array kWords = {"dose", "backlight", "dark"};
  const auto index = static_cast<std::size_t>(kind);
  return index < kWords.size() ? kWords[index] : "unknown";
}

}  // namespace
}  // namespace Osv::simulator

using namespace Osv::simulator;

long FakeFingerDetectionInitialize(void* reserved) {
  RecordedCall call(eFunction::FakeFingerDetectionInitialize);
  call.arguments("%s", reserved == nullptr ? "null" : "buffer");
  return answer(call, [] {
    g_bStarted = true;
    return long{kDetectorGood};
  });
}

long FakeFingerDetectionUninitialize() {
  RecordedCall call(eFunction::FakeFingerDetectionUninitialize);
  return answer(call, [] {
    g_bStarted = false;
    return long{kDetectorGood};
  });
}

long FakeFingerDetectionCreateHandle(void** handle) {
  RecordedCall call(eFunction::FakeFingerDetectionCreateHandle);
  if (handle == nullptr) {
    return answer(call, [] { return long{kDetectorBadArgument}; });
  }
  *handle = nullptr;
  const long code = code_of(call, [&]() -> long {
    if (!g_bStarted) {
      return kDetectorNotStarted;
    }
    *handle = call.effects().null_handle ? nullptr : detectors().create();
    return kDetectorGood;
  });
  call.result("%ld, handle %u", code, Detectors::number_of(*handle));
  return code;
}

long FakeFingerDetectionDestroyHandle(void** handle) {
  RecordedCall call(eFunction::FakeFingerDetectionDestroyHandle);
  call.arguments("handle %u", handle == nullptr ? 0 : Detectors::number_of(*handle));
  return answer(call, [&]() -> long {
    if (handle == nullptr || !detectors().destroy(*handle)) {
      return kDetectorBadHandle;
    }
    *handle = nullptr;
    return kDetectorGood;
  });
}

long FakeFingerDetectionReset(void* handle) {
  RecordedCall call(eFunction::FakeFingerDetectionReset);
  call.arguments("handle %u", Detectors::number_of(handle));
  return on_detector(call, handle, &handle, [](LivenessDetector& detector) {
    detector.reset();
    return long{kDetectorGood};
  });
}

long FakeFingerDetectionEvaluateLiveliness(void* handle, double* score) {
  RecordedCall call(eFunction::FakeFingerDetectionEvaluateLiveliness);
  call.arguments("handle %u", Detectors::number_of(handle));
  return on_detector(call, handle, score, [&](const LivenessDetector& detector) {
    const long code = detector.evaluate(*score);
    *score = call.effects().number.value_or(*score);
    return code;
  });
}

long FakeFingerDetectionSetImage(void* handle, std::int32_t kind, const tagBITMAPINFOHEADER* bitmap,
                                 unsigned long size) {
  RecordedCall call(eFunction::FakeFingerDetectionSetImage);
  call.arguments("handle %u, kind %d %s, size %lu", Detectors::number_of(handle), kind,
                 kind_in_words(kind), size);
  return on_detector(call, handle, bitmap, [&](LivenessDetector& detector) {
    return detector.set_image(kind, bitmap, size);
  });
}

long FakeFingerDetectionSetPropertyA(void* handle, const char* name, const char* value) {
  RecordedCall call(eFunction::FakeFingerDetectionSetPropertyA, name);
  call.arguments("handle %u, %s, %s", Detectors::number_of(handle), Quoted(name).c_str(),
                 Quoted(value).c_str());
  return on_detector(call, handle, name == nullptr ? name : value, [&](LivenessDetector& detector) {
    return detector.set_property(name, value);
  });
}

long FakeFingerDetectionGetPropertyA(void* handle, const char* name, char* value,
                                     unsigned long* length) {
  RecordedCall call(eFunction::FakeFingerDetectionGetPropertyA, name);
  const void* const needed = name == nullptr ? nullptr : length;
  call.arguments("handle %u, %s, %s, length %lu", Detectors::number_of(handle),
                 Quoted(name).c_str(), value == nullptr ? "null" : "buffer",
                 length == nullptr ? 0 : *length);
  return on_detector(call, handle, needed, [&](const LivenessDetector& detector) -> long {
    const Effects& effects = call.effects();
    if (effects.no_text) {
      return kDetectorGood;
    }
    std::string text;
    long code = effects.text.has_value() ? long{kDetectorGood} : detector.property(name, text);
    if (code == kDetectorGood) {
      const bool fits = give_text(effects.text.value_or(text), value, *length);
      code = fits ? kDetectorGood : kDetectorSmallBuffer;
    }
    if (effects.size.has_value()) {
      *length = static_cast<unsigned long>(*effects.size);
    }
    return code;
  });
}

const char* FakeFingerDetectionGetErrorDescriptionA(long code) {
  RecordedCall call(eFunction::FakeFingerDetectionGetErrorDescriptionA);
  call.arguments("code %ld", code);
  const char* const text = described(call, detector_text(code));
  call.result("%s", Quoted(text).c_str());
  return text;
}
