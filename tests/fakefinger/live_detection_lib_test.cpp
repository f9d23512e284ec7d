#include "fakefinger/live_detection_lib.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "fakefinger/detector_fixture.h"
#include "foundation/exceptions.h"

namespace Osv::lx {
namespace {

using testing_support::detector;
using testing_support::failure_of;
using testing_support::Lines;

constexpr std::array<const char*, 10> kFunctions = {
    "FakeFingerDetectionInitialize",   "FakeFingerDetectionUninitialize",
    "FakeFingerDetectionCreateHandle", "FakeFingerDetectionDestroyHandle",
    "FakeFingerDetectionReset",        "FakeFingerDetectionEvaluateLiveliness",
    "FakeFingerDetectionSetImage",     "FakeFingerDetectionSetPropertyA",
    "FakeFingerDetectionGetPropertyA", "FakeFingerDetectionGetErrorDescriptionA"};

class DetectorLoading : public testing_support::DetectorFixture {
 protected:
  static void load() { const CLiveDetectionLib library; }
};

TEST_F(DetectorLoading, StartsAndStopsTheDetector) {
  load();
  EXPECT_EQ(journal(), (Lines{"loaded", "Initialize null", "Uninitialize", "unloaded"}));
}

TEST_F(DetectorLoading, BindsAllSymbolsAtOnce) {
  load();
  ASSERT_EQ(testing_support::loader_calls().size(), 1U);
  EXPECT_EQ(testing_support::loader_calls()[0].name, testing_support::kDetectorName);
  EXPECT_EQ(testing_support::loader_calls()[0].mode, 2);
}

TEST_F(DetectorLoading, ThrowsTheLoadersTextForAMissingLibrary) {
  use_none();
  const auto failure = failure_of<CXOtherException>(load);
  EXPECT_EQ(failure.GetErrorNumber(), -201);
  EXPECT_NE(std::strstr(failure.GetDescription(), testing_support::kDetectorName), nullptr);
}

TEST_F(DetectorLoading, HasAnEmptyTextForAMissingLibraryWhenTheLoaderHasNone) {
  use_none_without_a_word();
  const auto failure = failure_of<CXOtherException>(load);
  EXPECT_EQ(failure.GetErrorNumber(), -201);
  EXPECT_STREQ(failure.GetDescription(), "");
}

/// Libraries that end after some function: the first one missing is the first one looked up.
class DetectorThatLacks : public DetectorLoading, public testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(Functions, DetectorThatLacks, testing::Range(0, 10));

TEST_P(DetectorThatLacks, AFunctionIsRefusedWithTheFirstMissingNameAndUnloaded) {
  use_functions(GetParam());
  const auto failure = failure_of<CXOtherException>(load);
  EXPECT_EQ(failure.GetErrorNumber(), -202);
  const std::string text = failure.GetDescription();
  EXPECT_TRUE(text.ends_with(kFunctions.at(static_cast<std::size_t>(GetParam())))) << text;
  EXPECT_EQ(journal(), (Lines{"loaded", "unloaded"}));
}

TEST_F(DetectorLoading, ReportsADetectorThatDoesNotStartAndUnloadsIt) {
  detector().codes["Initialize"] = -7;
  const auto failure = failure_of<CLiveDetectionException>(load);
  EXPECT_EQ(failure.GetErrorNumber(), -7);
  EXPECT_STREQ(failure.GetDescription(), "the detector's text");
  EXPECT_EQ(journal(), (Lines{"loaded", "Initialize null", "GetErrorDescription -7", "unloaded"}));
}

/// A detector that is loaded and started.
class Detector : public testing_support::DetectorFixture {
 protected:
  Detector() {
    m_library.emplace();
    detector().journal.clear();
  }

  /// A property that answers both calls with the given codes.
  static void answer_property(long first, unsigned long length, long second = 0) {
    detector().get_property = [=](char* buffer, unsigned long* out) {
      *out = length;
      return buffer == nullptr ? first : second;
    };
  }

  double evaluate(long code) {
    detector().codes["EvaluateLiveliness"] = code;
    detector().score = 0.75;
    return m_library->EvalLifeness(m_handle, &m_state);
  }

  std::optional<CLiveDetectionLib> m_library;
  void* m_handle = reinterpret_cast<void*>(std::uintptr_t{5});
  int m_state = 99;
};

TEST_F(Detector, GivesAHandle) {
  EXPECT_EQ(m_library->Create(), reinterpret_cast<void*>(std::uintptr_t{1}));
  EXPECT_EQ(journal(), Lines{"CreateHandle"});
}

TEST_F(Detector, PassesTheCodeOfDestroyOn) {
  detector().codes["DestroyHandle"] = -3;
  EXPECT_EQ(m_library->Destroy(&m_handle), -3);
  EXPECT_EQ(journal(), Lines{"DestroyHandle 5"});
}

TEST_F(Detector, AnswersZeroToSuccessfulCalls) {
  tagBITMAPINFOHEADER block{};
  block.biWidth = 388;
  EXPECT_EQ(m_library->Reset(m_handle), 0);
  EXPECT_EQ(m_library->SetImage(m_handle, eImageDark, &block, 40), 0);
  EXPECT_EQ(m_library->SetProperty(m_handle, "name", "value"), 0);
  EXPECT_EQ(journal(), (Lines{"Reset 5", "SetImage 5 2 388 40", "SetProperty 5 name=value"}));
}

TEST_F(Detector, NumbersTheKindsOfImages) {
  EXPECT_EQ(eImageDose, 0);
  EXPECT_EQ(eImageBacklight, 1);
  EXPECT_EQ(eImageDark, 2);
}

TEST_F(Detector, TurnsEachFailedCallIntoAnException) {
  const tagBITMAPINFOHEADER block{};
  const std::pair<const char*, std::function<void()>> calls[] = {
      {"CreateHandle", [&] { (void)m_library->Create(); }},
      {"Reset", [&] { m_library->Reset(m_handle); }},
      {"SetImage", [&] { m_library->SetImage(m_handle, eImageDose, &block, 40); }},
      {"SetProperty", [&] { m_library->SetProperty(m_handle, "a", "b"); }},
      {"EvaluateLiveliness", [&] { m_library->EvalLifeness(m_handle, &m_state); }}};
  for (const auto& [function, call] : calls) {
    detector().codes = {{function, -15}};
    EXPECT_EQ(failure_of<CLiveDetectionException>(call).GetErrorNumber(), -15) << function;
  }
}

TEST_F(Detector, AsksTheLibraryForTheTextOfAnError) {
  detector().codes["Reset"] = 17;
  const auto failure = failure_of<CLiveDetectionException>([&] { m_library->Reset(m_handle); });
  EXPECT_STREQ(failure.GetDescription(), "the detector's text");
  EXPECT_EQ(journal(), (Lines{"Reset 5", "GetErrorDescription 17"}));
}

TEST_F(Detector, MayHaveNoTextForAnError) {
  detector().codes["Reset"] = 17;
  detector().description = nullptr;
  const auto failure = failure_of<CLiveDetectionException>([&] { m_library->Reset(m_handle); });
  EXPECT_STREQ(failure.GetDescription(), "");
}

TEST_F(Detector, HasItsTextCutAt1024Characters) {
  const std::string text(3000, 'x');
  detector().codes["Reset"] = 17;
  detector().description = text.c_str();
  const auto failure = failure_of<CLiveDetectionException>([&] { m_library->Reset(m_handle); });
  EXPECT_EQ(std::strlen(failure.GetDescription()), 1024U);
}

TEST_F(Detector, HasItsCodeCutTo32Bits) {
  detector().codes["Reset"] = 0x500000007;
  const auto failure = failure_of<CLiveDetectionException>([&] { m_library->Reset(m_handle); });
  EXPECT_EQ(failure.GetErrorNumber(), 7);
}

TEST_F(Detector, IsAskedTwiceForAProperty) {
  detector().properties["Version"] = "1.2";
  EXPECT_EQ(m_library->GetProperty(m_handle, "Version"), std::string("1.2\0", 4));
  EXPECT_EQ(journal(), (Lines{"GetProperty 5 Version null 0", "GetProperty 5 Version buffer 4"}));
}

TEST_F(Detector, GivesAnEmptyPropertyWhenItAnswersZeroToTheNullBuffer) {
  answer_property(0, 10);
  EXPECT_EQ(m_library->GetProperty(m_handle, "p"), "");
  EXPECT_EQ(journal().size(), 1U);
}

TEST_F(Detector, GivesAnEmptyPropertyForLengthZeroWithoutASecondCall) {
  answer_property(-21, 0);
  EXPECT_EQ(m_library->GetProperty(m_handle, "p"), "");
  EXPECT_EQ(journal().size(), 1U);
}

TEST_F(Detector, FillsAPropertyWithZeroDigitsAndKeepsItsFirstLength) {
  detector().get_property = [](char* buffer, unsigned long* length) {
    *length = buffer == nullptr ? 4 : 1;
    return buffer == nullptr ? -21L : 0L;
  };
  EXPECT_EQ(m_library->GetProperty(m_handle, "p"), "0000");
}

TEST_F(Detector, MayFailAtEitherCallForAProperty) {
  const auto read = [&] { (void)m_library->GetProperty(m_handle, "p"); };
  answer_property(-5, 4);
  EXPECT_EQ(failure_of<CLiveDetectionException>(read).GetErrorNumber(), -5);
  answer_property(-21, 4, -6);
  EXPECT_EQ(failure_of<CLiveDetectionException>(read).GetErrorNumber(), -6);
  answer_property(-21, 4, -21);
  EXPECT_EQ(failure_of<CLiveDetectionException>(read).GetErrorNumber(), -21);
}

TEST_F(Detector, IsRefusedAPropertyOfAbsurdLength) {
  for (const unsigned long length : {(1UL << 24) + 1, 1UL << 40, ~0UL}) {
    answer_property(-21, length);
    EXPECT_THROW((void)m_library->GetProperty(m_handle, "p"), CXMemoryAllocException);
  }
}

TEST_F(Detector, MayHaveAPropertyOf16Mebibytes) {
  answer_property(-21, 1UL << 24);
  EXPECT_EQ(m_library->GetProperty(m_handle, "p").size(), 1UL << 24);
}

TEST_F(Detector, GivesAScoreWithStateZero) {
  EXPECT_EQ(evaluate(0), 0.75);
  EXPECT_EQ(m_state, 0);
}

TEST_F(Detector, GivesAScoreAndAStateInTheWholeBand) {
  for (const long code : {-799L, -798L, -780L, -769L, -768L}) {
    EXPECT_EQ(evaluate(code), 0.75);
    EXPECT_EQ(m_state, code);
  }
}

TEST_F(Detector, FailsOutsideTheBandWithStateZero) {
  for (const long code : {-767L, -800L, 768L, -1L, 1L, -15L, LONG_MAX, LONG_MIN + 1}) {
    const auto failure = failure_of<CLiveDetectionException>([&] { evaluate(code); });
    EXPECT_EQ(failure.GetErrorNumber(), static_cast<int>(code));
    EXPECT_EQ(m_state, 0) << code;
  }
}

TEST_F(Detector, IsStoppedAndUnloadedWhenTheBindingGoes) {
  m_library.reset();
  EXPECT_EQ(journal(), (Lines{"Uninitialize", "unloaded"}));
}

}  // namespace
}  // namespace Osv::lx
