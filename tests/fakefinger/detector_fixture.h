#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fakefinger/scripted_detector.h"
#include "foundation/loader_redirection.h"
#include "support/failure_of.h"

namespace Osv::testing_support {

constexpr char kDetectorName[] = "libostrevanfakefingerdetection.so";

using Lines = std::vector<std::string>;

/// Puts a freshly scripted detector in the place of the closed one.
class DetectorFixture : public testing::Test {
 protected:
  DetectorFixture() {
    detector() = ScriptedDetector();
    use_functions(10);
  }

  /// The stand-in that has the first `count` functions in the order of look-up.
  static void use_functions(int count) {
    put_in_place_of(kDetectorName, HVK3_DETECTOR_STAND_IN + std::to_string(count) + ".so");
  }

  static void use_none() { put_in_place_of(kDetectorName, ""); }

  static void use_none_without_a_word() { put_silence_in_place_of(kDetectorName); }

  static Lines journal() { return detector().journal; }
};

}  // namespace Osv::testing_support
