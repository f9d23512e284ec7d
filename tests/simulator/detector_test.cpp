#include <array>
#include <string>

#include "libraries/detector_api.h"
#include "libraries/scanner_api.h"
#include "simulator/images.h"
#include "support/simulator_fixture.h"

namespace Osv::simulator {
namespace {

constexpr long kBadHandle = -2;
constexpr long kBadArgument = -3;
constexpr long kNoProperty = -4;
constexpr long kBadValue = -5;
constexpr long kBadImage = -6;
constexpr long kImagesMissing = -7;
constexpr long kNotStarted = -8;
constexpr long kNoFinger = -15;
constexpr long kSmallBuffer = -21;
constexpr long kDoubtful = -768;

class DetectorStandIn : public SimulatorFixture {
 protected:
  DetectorStandIn()
      : m_hScanner(ftrScanOpenDeviceOnInterface(0)), m_cEngine(payload_of_scanner(bench, 0)) {
    FakeFingerDetectionInitialize(nullptr);
    FakeFingerDetectionCreateHandle(&m_hDetector);
    CalibrateSetOption(m_cEngine.handle(), "DynamicFingerMask = false");
  }
  ~DetectorStandIn() override {
    FakeFingerDetectionDestroyHandle(&m_hDetector);
    FakeFingerDetectionUninitialize();
    ftrScanCloseDevice(m_hScanner);
  }

  void push(int kind, const Bytes& frame) {
    const Block image = m_cEngine.correct(prepare(frame));
    EXPECT_EQ(FakeFingerDetectionSetImage(m_hDetector, kind, &image.head(), image.size()), 0);
  }

  /// Takes the three images of what lies on the platen, and has them scored.
  long score_scene() {
    Bytes frame(std::size_t{kRawWidth} * kRawHeight);
    ftrScanGetDarkImage(m_hScanner, frame.data());
    push(2, frame);
    ftrScanGetBacklightImage(m_hScanner, frame.data());
    push(1, frame);
    push(0, take_dose_frame(m_hScanner));
    return FakeFingerDetectionEvaluateLiveliness(m_hDetector, &m_dScore);
  }

  void set(const char* name, const std::string& value) {
    EXPECT_EQ(FakeFingerDetectionSetPropertyA(m_hDetector, name, value.c_str()), 0);
  }

  std::string get(const char* name) {
    std::array<char, 40> text = {};
    unsigned long length = text.size();
    EXPECT_EQ(FakeFingerDetectionGetPropertyA(m_hDetector, name, text.data(), &length), 0);
    return text.data();
  }

  double rate(const char* name, int score) {
    set("dQueryScore", std::to_string(score));
    return std::stod(get(name));
  }

  /// The last score at which wrongly accepted fingers are no fewer than wrongly rejected ones.
  int crossing() {
    int score = 0;
    while (rate("dQueryFAR", score + 1) >= rate("dQueryFRR", score + 1)) {
      ++score;
    }
    return score;
  }

  void* m_hScanner;
  Engine m_cEngine;
  void* m_hDetector = nullptr;
  double m_dScore = -1;
};

TEST_F(DetectorStandIn, ALiveFingerScoresAboveTheCrossingOfBothLevels) {
  bench.set_timeline(Timeline::settled_finger());
  EXPECT_EQ(score_scene(), 0);
  set("nSecurityLevel", "2");
  EXPECT_GT(m_dScore, crossing() + 10);
  EXPECT_LE(m_dScore, 100);
}

TEST_F(DetectorStandIn, APrintedSheetScoresBelowTheCrossingOfBothLevels) {
  bench.set_timeline(Timeline::settled_finger());
  bench.set_finger_kind(eFingerKind::Printed);
  EXPECT_EQ(score_scene(), 0);
  EXPECT_GE(m_dScore, 0);
  EXPECT_LT(m_dScore, 10);
}

TEST_F(DetectorStandIn, AMouldedFingerPassesAtLevelOneAndIsCaughtAtLevelTwo) {
  bench.set_timeline(Timeline::settled_finger());
  bench.set_finger_kind(eFingerKind::Moulded);
  EXPECT_EQ(score_scene(), 0);
  EXPECT_GT(m_dScore, crossing() + 1);
  set("nSecurityLevel", "2");
  EXPECT_LT(m_dScore, crossing() - 1);
}

TEST_F(DetectorStandIn, TheScoreOfAKindDependsLittleOnPrintAndSkin) {
  bench.set_timeline(Timeline::settled_finger());
  for (const unsigned int seed : {1U, 2U, 4U}) {
    bench.set_print(seed, ePrint::Plain);
    for (const eSkin skin : {eSkin::Normal, eSkin::Dry, eSkin::Wet}) {
      bench.set_skin(skin);
      bench.set_finger_kind(eFingerKind::Moulded);
      score_scene();
      EXPECT_GT(m_dScore, 50);
      EXPECT_LT(m_dScore, 60);
      bench.set_finger_kind(eFingerKind::Live);
      score_scene();
      EXPECT_GT(m_dScore, 85);
    }
  }
}

TEST_F(DetectorStandIn, ThreeTimesTheSamePictureScoresBelowTheCrossing) {
  bench.set_timeline(Timeline::settled_finger());
  const Bytes frame = take_dose_frame(m_hScanner);
  for (const int kind : {0, 1, 2}) {
    push(kind, frame);
  }
  EXPECT_EQ(FakeFingerDetectionEvaluateLiveliness(m_hDetector, &m_dScore), 0);
  EXPECT_LT(m_dScore, crossing() - 10);
}

TEST_F(DetectorStandIn, WithoutAFingerThereIsNoScore) { EXPECT_EQ(score_scene(), kNoFinger); }

TEST_F(DetectorStandIn, OfLittleFingerTheScoreIsDoubtful) {
  bench.set_finger({70, 70, Bytes(4900, 0)});
  bench.set_timeline(Timeline::settled_finger());
  EXPECT_EQ(score_scene(), kDoubtful);
  EXPECT_GE(m_dScore, 0);
}

TEST_F(DetectorStandIn, AnIncompleteSetHasNoScore) {
  EXPECT_EQ(FakeFingerDetectionEvaluateLiveliness(m_hDetector, &m_dScore), kImagesMissing);
  push(0, take_dose_frame(m_hScanner));
  EXPECT_EQ(FakeFingerDetectionEvaluateLiveliness(m_hDetector, &m_dScore), kImagesMissing);
}

TEST_F(DetectorStandIn, AResetForgetsTheImages) {
  bench.set_timeline(Timeline::settled_finger());
  score_scene();
  EXPECT_EQ(FakeFingerDetectionReset(m_hDetector), 0);
  EXPECT_EQ(FakeFingerDetectionEvaluateLiveliness(m_hDetector, &m_dScore), kImagesMissing);
}

TEST_F(DetectorStandIn, TheErrorCurvesCrossAndMoveWithTheLevel) {
  EXPECT_GT(rate("dQueryFAR", 0), rate("dQueryFRR", 0));
  EXPECT_LT(rate("dQueryFAR", 99), rate("dQueryFRR", 99));
  EXPECT_EQ(crossing(), 48);
  set("nSecurityLevel", "2");
  EXPECT_EQ(crossing(), 62);
}

TEST_F(DetectorStandIn, OneCurveFallsAndTheOtherRises) {
  for (int score = 0; score < 100; score += 10) {
    EXPECT_GE(rate("dQueryFAR", score), rate("dQueryFAR", score + 10));
    EXPECT_LE(rate("dQueryFRR", score), rate("dQueryFRR", score + 10));
  }
}

TEST_F(DetectorStandIn, ThePropertyIsAskedForInTwoCalls) {
  unsigned long length = 0;
  EXPECT_EQ(FakeFingerDetectionGetPropertyA(m_hDetector, "nSecurityLevel", nullptr, &length),
            kSmallBuffer);
  EXPECT_EQ(length, 2U);
  std::array<char, 2> text = {'x', 'x'};
  EXPECT_EQ(FakeFingerDetectionGetPropertyA(m_hDetector, "nSecurityLevel", text.data(), &length),
            0);
  EXPECT_STREQ(text.data(), "1");
}

TEST_F(DetectorStandIn, ItTellsItsVersion) { EXPECT_FALSE(get("Version").empty()); }

TEST_F(DetectorStandIn, UnknownPropertiesAndBadValuesAreRefused) {
  unsigned long length = 0;
  EXPECT_EQ(FakeFingerDetectionGetPropertyA(m_hDetector, "x", nullptr, &length), kNoProperty);
  EXPECT_EQ(FakeFingerDetectionSetPropertyA(m_hDetector, "x", "1"), kNoProperty);
  EXPECT_EQ(FakeFingerDetectionSetPropertyA(m_hDetector, "Version", "1"), kNoProperty);
  EXPECT_EQ(FakeFingerDetectionSetPropertyA(m_hDetector, "nSecurityLevel", "3"), kBadValue);
  EXPECT_EQ(FakeFingerDetectionSetPropertyA(m_hDetector, "nSecurityLevel", ""), kBadValue);
  EXPECT_EQ(FakeFingerDetectionSetPropertyA(m_hDetector, "dQueryScore", "101"), kBadValue);
  EXPECT_EQ(FakeFingerDetectionSetPropertyA(m_hDetector, "dQueryScore", "nan"), kBadValue);
}

TEST_F(DetectorStandIn, NullArgumentsAndWrongHandlesAreRefused) {
  EXPECT_EQ(FakeFingerDetectionCreateHandle(nullptr), kBadArgument);
  EXPECT_EQ(FakeFingerDetectionDestroyHandle(nullptr), kBadHandle);
  EXPECT_EQ(FakeFingerDetectionReset(nullptr), kBadHandle);
  EXPECT_EQ(FakeFingerDetectionEvaluateLiveliness(m_hDetector, nullptr), kBadArgument);
  EXPECT_EQ(FakeFingerDetectionSetPropertyA(m_hDetector, nullptr, "1"), kBadArgument);
  EXPECT_EQ(FakeFingerDetectionSetPropertyA(m_hDetector, "dQueryScore", nullptr), kBadArgument);
  EXPECT_EQ(FakeFingerDetectionGetPropertyA(m_hDetector, "Version", nullptr, nullptr),
            kBadArgument);
}

TEST_F(DetectorStandIn, ImagesThatAreNoneAreRefused) {
  const Block image(10, 10);
  EXPECT_EQ(FakeFingerDetectionSetImage(m_hDetector, 0, nullptr, 0), kBadArgument);
  EXPECT_EQ(FakeFingerDetectionSetImage(m_hDetector, 3, &image.head(), image.size()), kBadArgument);
  EXPECT_EQ(FakeFingerDetectionSetImage(m_hDetector, 0, &image.head(), image.size() - 1),
            kBadImage);
}

TEST_F(DetectorStandIn, ADestroyedHandleIsNull) {
  void* other = nullptr;
  FakeFingerDetectionCreateHandle(&other);
  void* const copy = other;
  EXPECT_EQ(FakeFingerDetectionDestroyHandle(&other), 0);
  EXPECT_EQ(other, nullptr);
  EXPECT_EQ(FakeFingerDetectionReset(copy), kBadHandle);
}

TEST_F(DetectorStandIn, BeforeItsStartItGivesNoHandle) {
  FakeFingerDetectionUninitialize();
  void* other = nullptr;
  EXPECT_EQ(FakeFingerDetectionCreateHandle(&other), kNotStarted);
  EXPECT_EQ(other, nullptr);
}

TEST_F(DetectorStandIn, EachOfItsCodesHasATextAndNoOtherNumberHasOne) {
  for (const long code : {kBadHandle, kBadArgument, kNoProperty, kBadValue, kBadImage,
                          kImagesMissing, kNotStarted, kNoFinger, kSmallBuffer, kDoubtful}) {
    EXPECT_NE(FakeFingerDetectionGetErrorDescriptionA(code), nullptr);
  }
  EXPECT_EQ(FakeFingerDetectionGetErrorDescriptionA(-1000), nullptr);
}

}  // namespace
}  // namespace Osv::simulator
