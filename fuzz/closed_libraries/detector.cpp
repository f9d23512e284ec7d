#include "libraries/detector_api.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>

#include "closed_libraries/answers.h"
#include "closed_libraries/scene.h"

/// @file
/// The fake finger detector. Its error curves cross in the middle of the scores. A client gets none
/// of its numbers to see.

namespace Osv::fuzz {
namespace {

constexpr long kGood = 0;
constexpr long kSmallBuffer = -21;
constexpr double kHighestScore = 100.0;

double g_query = 0.0;
unsigned int g_seen = 0;  // of the images since the last reset

/// Texts that are no number of the kind that is expected.
constexpr std::array<std::string_view, 6> kOddTexts = {"",
                                                       "nan",
                                                       "1e999",
                                                       "-1",
                                                       std::string_view("4\0"
                                                                        "2",
                                                                        3),
                                                       "no number at all, and a long one"};

long code_of(const Fault& fault) {
  return fault.kind == eFault::Fails ? Answers::code(fault.value) : kGood;
}

std::string value_of(std::string_view name) {
  std::array<char, 32> text = {};
  const double rate = name == "dQueryFRR" ? g_query : kHighestScore - g_query;
  std::snprintf(text.data(), text.size(), "%g", rate);
  return text.data();
}

/// Stores the length that a value needs, or writes it into a buffer of the length that was stored
/// before; of a longer value as much as there is room for.
long give_value(std::string_view text, char* value, unsigned long* length) {
  if (value == nullptr) {
    *length = text.size() + 1;
    return kSmallBuffer;
  }
  std::memset(value, 0, *length);
  std::memcpy(value, text.data(), std::min(text.size(), *length));
  return kGood;
}

/// Lengths that no value has: none, and more than anybody would allocate.
long odd_length(std::uint32_t value, unsigned long* length) {
  constexpr std::array<unsigned long, 4> kLengths = {0, 1UL << 16, 1UL << 40,
                                                     std::numeric_limits<unsigned long>::max()};
  *length = kLengths[value % kLengths.size()];
  return kSmallBuffer;
}

}  // namespace
}  // namespace Osv::fuzz

using namespace Osv::fuzz;

long FakeFingerDetectionInitialize(void*) {
  g_query = 0.0;
  g_seen = 0;
  const long code = code_of(answers().next(__func__));
  if (code == kGood) {
    scene().start_detection();
  }
  return code;
}

long FakeFingerDetectionUninitialize() {
  scene().stop_detection();
  return code_of(answers().next(__func__));
}

long FakeFingerDetectionCreateHandle(void** handle) {
  const Fault fault = answers().next(__func__);
  *handle = fault.kind == eFault::None ? scene().create_detector() : nullptr;
  return code_of(fault);
}

long FakeFingerDetectionDestroyHandle(void** handle) {
  scene().destroy_detector(*handle);
  *handle = nullptr;
  return code_of(answers().next(__func__));
}

long FakeFingerDetectionReset(void* handle) {
  scene().require_detector(handle);
  g_seen = 0;
  return code_of(answers().next(__func__));
}

long FakeFingerDetectionEvaluateLiveliness(void* handle, double* score) {
  constexpr std::array<double, 4> kOddScores = {std::numeric_limits<double>::quiet_NaN(),
                                                std::numeric_limits<double>::infinity(), -1.0, 0.0};
  scene().require_detector(handle);
  const Fault fault = answers().next(__func__);
  *score = fault.kind == eFault::Odd ? kOddScores[fault.value % kOddScores.size()] : g_seen % 100;
  return code_of(fault);
}

long FakeFingerDetectionSetImage(void* handle, std::int32_t, const tagBITMAPINFOHEADER* bitmap,
                                 unsigned long size) {
  scene().require_detector(handle);
  const auto* const bytes = reinterpret_cast<const unsigned char*>(bitmap);
  for (unsigned long i = 0; i < size; ++i) {
    g_seen = g_seen * 31 + bytes[i];
  }
  return code_of(answers().next(__func__));
}

long FakeFingerDetectionSetPropertyA(void* handle, const char* name, const char* value) {
  scene().require_detector(handle);
  if (std::string_view(name) == "dQueryScore") {
    std::sscanf(value, "%lf", &g_query);
  }
  return code_of(answers().next(__func__));
}

long FakeFingerDetectionGetPropertyA(void* handle, const char* name, char* value,
                                     unsigned long* length) {
  scene().require_detector(handle);
  const Fault fault = answers().next(__func__);
  if (fault.kind == eFault::Fails) {
    return code_of(fault);
  }
  if (fault.kind == eFault::None) {
    return give_value(value_of(name), value, length);
  }
  return value == nullptr && fault.value % 2 == 0
             ? odd_length(fault.value / 2, length)
             : give_value(kOddTexts[fault.value / 2 % kOddTexts.size()], value, length);
}

const char* FakeFingerDetectionGetErrorDescriptionA(long) {
  const Fault fault = answers().next(__func__);
  return fault.kind == eFault::None ? "the detector refuses" : nullptr;
}
