#include <cstdint>

#include "recorder/forwarders/forwarder.h"

/// @file
/// The forwarder for the fake finger detector. A code is 0 for success.

namespace Osv::recorder {
namespace {

constexpr long kLargerBufferNeeded = -21;

HandleBook& detectors() { return handles(eLibrary::ostrevanfakefingerdetection); }

/// Whether the score is there: 0, and the codes that tell a state of the images.
bool has_score(long code) {
  constexpr long kFirstState = -799;
  constexpr long kLastState = -768;
  return code == 0 || (code >= kFirstState && code <= kLastState);
}

}  // namespace
}  // namespace Osv::recorder

using namespace Osv::recorder;

OSV_FORWARDER long FakeFingerDetectionInitialize(void* reserved) {
  constexpr auto kFunction = eFunction::FakeFingerDetectionInitialize;
  return code_call(kFunction, Arguments().pointer(reserved), [&] {
    return real<decltype(FakeFingerDetectionInitialize)>(kFunction)(reserved);
  });
}

OSV_FORWARDER long FakeFingerDetectionUninitialize() {
  constexpr auto kFunction = eFunction::FakeFingerDetectionUninitialize;
  return code_call(kFunction, Arguments(),
                   [] { return real<decltype(FakeFingerDetectionUninitialize)>(kFunction)(); });
}

OSV_FORWARDER long FakeFingerDetectionCreateHandle(void** handle) {
  constexpr auto kFunction = eFunction::FakeFingerDetectionCreateHandle;
  return exchange<long>(
      kFunction, Arguments().pointer(handle),
      [&] { return real<decltype(FakeFingerDetectionCreateHandle)>(kFunction)(handle); },
      [&](Answer& answer, long& code) {
        answer.number(code);
        if (code == 0 && handle != nullptr) {
          answer.new_handle(*handle, detectors());
        }
      });
}

OSV_FORWARDER long FakeFingerDetectionDestroyHandle(void** handle) {
  constexpr auto kFunction = eFunction::FakeFingerDetectionDestroyHandle;
  Arguments arguments;
  if (handle != nullptr) {
    arguments.handle(detectors().number_of(*handle));
    detectors().forget(*handle);
  }
  return exchange<long>(
      kFunction, arguments,
      [&] { return real<decltype(FakeFingerDetectionDestroyHandle)>(kFunction)(handle); },
      [&](Answer& answer, long& code) {
        bool is_null = handle != nullptr && *handle == nullptr;
        answer.number(code);
        answer.flag(is_null);
        if (is_null && handle != nullptr) {
          *handle = nullptr;
        }
      });
}

OSV_FORWARDER long FakeFingerDetectionReset(void* handle) {
  constexpr auto kFunction = eFunction::FakeFingerDetectionReset;
  return code_call(kFunction, on_handle(detectors(), handle),
                   [&] { return real<decltype(FakeFingerDetectionReset)>(kFunction)(handle); });
}

OSV_FORWARDER long FakeFingerDetectionEvaluateLiveliness(void* handle, double* score) {
  constexpr auto kFunction = eFunction::FakeFingerDetectionEvaluateLiveliness;
  return exchange<long>(
      kFunction, on_handle(detectors(), handle).pointer(score),
      [&] {
        return real<decltype(FakeFingerDetectionEvaluateLiveliness)>(kFunction)(handle, score);
      },
      [&](Answer& answer, long& code) {
        answer.number(code);
        if (has_score(code)) {
          answer.bytes(score, sizeof(*score));
        }
      });
}

OSV_FORWARDER long FakeFingerDetectionSetImage(void* handle, std::int32_t kind, const void* bitmap,
                                               unsigned long size) {
  constexpr auto kFunction = eFunction::FakeFingerDetectionSetImage;
  Arguments arguments = on_handle(detectors(), handle);
  add_image(arguments.number(kind), bitmap, size);
  return code_call(kFunction, arguments, [&] {
    return real<decltype(FakeFingerDetectionSetImage)>(kFunction)(handle, kind, bitmap, size);
  });
}

OSV_FORWARDER long FakeFingerDetectionSetPropertyA(void* handle, const char* name,
                                                   const char* value) {
  constexpr auto kFunction = eFunction::FakeFingerDetectionSetPropertyA;
  return code_call(kFunction, on_handle(detectors(), handle).text(name).text(value), [&] {
    return real<decltype(FakeFingerDetectionSetPropertyA)>(kFunction)(handle, name, value);
  });
}

OSV_FORWARDER long FakeFingerDetectionGetPropertyA(void* handle, const char* name, char* value,
                                                   unsigned long* length) {
  constexpr auto kFunction = eFunction::FakeFingerDetectionGetPropertyA;
  const unsigned long room = length == nullptr ? 0 : *length;
  return exchange<long>(
      kFunction,
      on_handle(detectors(), handle)
          .text(name)
          .pointer(value)
          .number(static_cast<std::int64_t>(room)),
      [&] {
        return real<decltype(FakeFingerDetectionGetPropertyA)>(kFunction)(handle, name, value,
                                                                          length);
      },
      [&](Answer& answer, long& code) {
        answer.number(code);
        if (length != nullptr && (code == 0 || code == kLargerBufferNeeded)) {
          answer.number(*length);
        }
        if (value != nullptr && code == 0) {
          answer.some_bytes(value, room, room, room);
        }
      });
}

OSV_FORWARDER const char* FakeFingerDetectionGetErrorDescriptionA(long code) {
  constexpr auto kFunction = eFunction::FakeFingerDetectionGetErrorDescriptionA;
  return exchange<const char*>(
      kFunction, Arguments().number(code),
      [&] { return real<decltype(FakeFingerDetectionGetErrorDescriptionA)>(kFunction)(code); },
      [](Answer& answer, const char*& text) { answer.text(text); });
}
