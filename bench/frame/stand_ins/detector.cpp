#include <cstdio>
#include <cstring>
#include <string_view>

#include "libraries/detector_api.h"
#include "stand_ins/control.h"

/// @file
/// A detector of fake fingers that looks at nothing and counts its calls.

namespace {

constexpr long kGood = 0;
constexpr long kSmallBuffer = -21;
constexpr double kHighestScore = 100.0;

Osv::bench::DetectorControl g_control;
double g_query = 0.0;
int g_handle = 0;

long other_call() {
  ++g_control.other_calls;
  return kGood;
}

}  // namespace

Osv::bench::DetectorControl* ostrevan_bench_detector() { return &g_control; }

long FakeFingerDetectionInitialize(void*) { return other_call(); }
long FakeFingerDetectionUninitialize() { return other_call(); }
long FakeFingerDetectionCreateHandle(void** handle) {
  *handle = &g_handle;
  return other_call();
}
long FakeFingerDetectionDestroyHandle(void**) { return other_call(); }
long FakeFingerDetectionReset(void*) { return other_call(); }

long FakeFingerDetectionEvaluateLiveliness(void*, double* score) {
  *score = g_control.score;
  return other_call();
}

long FakeFingerDetectionSetImage(void*, std::int32_t, const tagBITMAPINFOHEADER*, unsigned long) {
  return other_call();
}

long FakeFingerDetectionSetPropertyA(void*, const char* name, const char* value) {
  ++g_control.property_writes;
  if (std::string_view(name) == "dQueryScore") {
    std::sscanf(value, "%lf", &g_query);
  }
  return kGood;
}

/// The curves cross in the middle of the scores.
long FakeFingerDetectionGetPropertyA(void*, const char* name, char* value, unsigned long* length) {
  ++g_control.property_reads;
  const bool rejects = std::string_view(name) == "dQueryFRR";
  char text[32];
  const int size =
      std::snprintf(text, sizeof(text), "%g", rejects ? g_query : kHighestScore - g_query);
  const auto needed = static_cast<unsigned long>(size) + 1;
  const bool fits = value != nullptr && *length >= needed;
  *length = needed;
  if (fits) {
    std::memcpy(value, text, needed);
  }
  return fits ? kGood : kSmallBuffer;
}

const char* FakeFingerDetectionGetErrorDescriptionA(long) { return "refused"; }
