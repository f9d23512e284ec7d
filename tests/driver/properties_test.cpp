#include <dlfcn.h>
#include <gtest/gtest.h>

#include <string>

#include "driver/driver_fixture.h"

namespace Osv::lx {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr char kDetector[] = "libostrevanfakefingerdetection.so";
const Failure kIncorrect = {12, "Incorrect property or frame grabber does not support"};

/// A driver whose scanner is open.
class Properties : public DriverFixture {
 protected:
  Properties() { open(); }

  unsigned int get(unsigned int id) {
    unsigned int value = 7;
    EXPECT_EQ(driver.GetProperty(static_cast<ePropertyIDs>(id), value), 0UL);
    return value;
  }

  void set(unsigned int id, unsigned int value) {
    EXPECT_EQ(driver.SetProperty(static_cast<ePropertyIDs>(id), value), 0UL);
  }

  /// Turning the detector on says that it can't be loaded.
  void expect_number_59() {
    const Failure expected = {59, "Failed to load live detection module"};
    EXPECT_EQ(failure_of([&] { driver.SetProperty(ePropLiveliness, 1); }), expected);
    EXPECT_EQ(driver.LastErrorText(), expected.text);
    EXPECT_EQ(driver.m_nLastError, 59U);
  }
};

TEST_F(Properties, ReadingIsLoggedWithWhatTheCallersVariableHolds) {
  get(3);
  EXPECT_THAT(story(), ElementsAre("7 KR9 scanner. Reading of KR9 scanner property. Property ID: "
                                   "3, value: 7"));
}

TEST_F(Properties, WritingIsLogged) {
  set(12, 41);
  EXPECT_THAT(story(),
              ElementsAre("7 KR9 scanner setting of property. Property ID: 12, value: 41"));
}

TEST_F(Properties, TheNumberOfChannelsIs1) { EXPECT_EQ(get(3), 1U); }

TEST_F(Properties, TheNumberOfChannelsIsRefusedWith18OnWritingAndNoErrorIsStored) {
  driver.SetLastFGError(9, "earlier");
  EXPECT_EQ(failure_of([&] { driver.SetProperty(ePropChannelCount, 1); }),
            (Failure{18, "The property is read only"}));
  EXPECT_EQ(driver.LastErrorText(), "earlier");
}

struct UnknownProperties : Properties, ::testing::WithParamInterface<unsigned int> {};

TEST_P(UnknownProperties, AreRefusedWith12OnReadingAndTheValueStays) {
  unsigned int value = 7;
  EXPECT_EQ(failure_of([&] { driver.GetProperty(static_cast<ePropertyIDs>(GetParam()), value); }),
            kIncorrect);
  EXPECT_EQ(value, 7U);
  EXPECT_EQ(driver.LastErrorText(), kIncorrect.text);
  EXPECT_EQ(driver.m_nLastError, 12U);
}

TEST_P(UnknownProperties, AreRefusedWith12OnWriting) {
  EXPECT_EQ(failure_of([&] { driver.SetProperty(static_cast<ePropertyIDs>(GetParam()), 1); }),
            kIncorrect);
  EXPECT_EQ(driver.LastErrorText(), kIncorrect.text);
}

INSTANTIATE_TEST_SUITE_P(Numbers, UnknownProperties,
                         ::testing::Values(0U, 1U, 2U, 4U, 5U, 9U, 10U, 11U, 14U, 55U,
                                           0xFFFFFFFFU));

// ---- LEDs

struct LED {
  unsigned int property;
  const char* levels;  ///< green, red, while it is on
};

struct LEDs : Properties, ::testing::WithParamInterface<LED> {};

TEST_P(LEDs, ReadAs100WhileOnAnd0WhileOff) {
  EXPECT_EQ(get(GetParam().property), 0U);
  set(GetParam().property, 1);
  EXPECT_EQ(get(GetParam().property), 100U);
  set(GetParam().property, 0);
  EXPECT_EQ(get(GetParam().property), 0U);
}

TEST_P(LEDs, AnyValueBut0SwitchesThemOn) {
  set(GetParam().property, 0x80000000U);
  EXPECT_THAT(journal("ftrScanSetDiodesStatus"), ElementsAre(HasSubstr(GetParam().levels)));
  EXPECT_EQ(get(GetParam().property), 100U);
}

TEST_P(LEDs, ASwitchThatFailsIsReportedAndTheyStayAsTheDeviceSays) {
  bench.set_faults("ftrScanSetDiodesStatus fails with 55");
  EXPECT_EQ(
      failure_of([&] { driver.SetProperty(static_cast<ePropertyIDs>(GetParam().property), 1); }),
      (Failure{55, "Switch the LED failed"}));
  EXPECT_EQ(get(GetParam().property), 100U);
}

INSTANTIATE_TEST_SUITE_P(RedAndGreen, LEDs,
                         ::testing::Values(LED{7, "green 0, red 255"}, LED{8, "green 255, red 0"}));

// ---- low contrast image

TEST_F(Properties, TheLowContrastImageIsTheEnginesSensitiveMode) {
  EXPECT_EQ(get(13), 0U);
  set(13, 2);
  EXPECT_EQ(get(13), 100U);
  set(13, 0);
  EXPECT_EQ(get(13), 0U);
  EXPECT_THAT(journal("CalibrateSetOption"),
              ElementsAre(HasSubstr("'SensitiveMode=true'"), HasSubstr("'SensitiveMode=false'")));
}

TEST_F(Properties, WithoutACalibrationTheLowContrastImageIsNeitherReadNorWritten) {
  driver.m_pCalibration.reset();
  EXPECT_EQ(get(13), 7U);
  set(13, 1);
  EXPECT_EQ(bench.count("CalibrateSetOption"), 0U);
}

TEST_F(Properties, AnEngineThatRefusesTheLowContrastImageIsReported) {
  bench.set_faults("CalibrateSetOption fails with -37");
  EXPECT_EQ(failure_of([&] { driver.SetProperty(ePropLowContrastImage, 1); }).number, -37);
}

// ---- fake finger detection

TEST_F(Properties, FakeFingerDetectionReadsAs100WhileItIsOn) {
  EXPECT_EQ(get(6), 0U);
  set(6, 1);
  EXPECT_EQ(get(6), 100U);
  set(6, 0);
  EXPECT_EQ(get(6), 0U);
  EXPECT_FALSE(driver.m_pLiveDetection->IsInit());
}

TEST_F(Properties, SecurityLevel2Is2AndAnyOtherValueIs1AndTheLevelIsNotRead) {
  for (const unsigned int value : {1U, 2U, 3U, 100U}) {
    set(6, 0);
    set(6, value);
    EXPECT_EQ(driver.m_pLiveDetection->GetSecurityLevel(), value == 2 ? 2U : 1U) << value;
    EXPECT_EQ(get(6), 100U);
  }
}

TEST_F(Properties, ADetectorThatRunsIsKeptForANewSecurityLevel) {
  set(6, 1);
  set(6, 2);
  EXPECT_EQ(bench.count("FakeFingerDetectionCreateHandle"), 1U);
  EXPECT_EQ(driver.m_pLiveDetection->GetSecurityLevel(), 2U);
}

TEST_F(Properties, SwitchingOffADetectorThatDoesNotRunDoesNothing) {
  set(6, 0);
  EXPECT_EQ(bench.count("FakeFingerDetectionDestroyHandle"), 0U);
}

TEST_F(Properties, AMissingDetectorKeepsTheLoadersNumberAndText) {
  libraries.make_absent(kDetector);
  try {
    driver.SetProperty(ePropLiveliness, 1);
    FAIL() << "no failure";
  } catch (const CXOtherException& failure) {
    EXPECT_EQ(failure.GetErrorNumber(), -201);
    EXPECT_THAT(failure.GetDescription(), HasSubstr(kDetector));
  }
  EXPECT_EQ(get(6), 0U);
}

TEST_F(Properties, AStartUpThatFailsAsALibraryIsNumber59) {
  // Held, since the exception's code lies in it.
  void* const held = ::dlopen(HVK3_THROWING_DETECTOR, RTLD_NOW);
  libraries.use_file(kDetector, HVK3_THROWING_DETECTOR);
  expect_number_59();
  EXPECT_EQ(get(6), 0U);
  ::dlclose(held);
}

TEST_F(Properties, ASecurityLevelThatFailsAsALibraryIsNumber59WithTheDetectorOn) {
  libraries.use_file(kDetector, HVK3_LEVEL_THROWING_DETECTOR);
  expect_number_59();
  EXPECT_EQ(get(6), 100U);
}

TEST_F(Properties, ASecurityLevelThatIsRefusedLeavesTheDetectorOn) {
  bench.set_faults("FakeFingerDetectionSetPropertyA fails with -5");
  try {
    driver.SetProperty(ePropLiveliness, 2);
    FAIL() << "no failure";
  } catch (const CLiveDetectionException& failure) {
    EXPECT_EQ(failure.GetErrorNumber(), -5);
  }
  EXPECT_EQ(get(6), 100U);
}

// ---- the threshold

TEST_F(Properties, AThresholdForADetectorThatIsOffIsPassedOnAndReadAs0UntilItIsOn) {
  set(12, 30);
  EXPECT_EQ(get(12), 0U);
  set(6, 1);
  EXPECT_EQ(get(12), 30U);
  EXPECT_EQ(bench.count("FakeFingerDetectionGetPropertyA"), 0U);
}

TEST_F(Properties, AThresholdOf0IsStoredAs1) {
  set(6, 1);
  set(12, 0);
  EXPECT_EQ(get(12), 1U);
}

TEST_F(Properties, AThresholdIsCutToAWholeNumber) {
  set(6, 1);
  driver.m_pLiveDetection->SetFakeScore(61.9);
  EXPECT_EQ(get(12), 61U);
}

TEST_F(Properties, TheHighestThresholdsComeThrough) {
  set(6, 1);
  set(12, 0xFFFFFFFFU);
  EXPECT_EQ(get(12), 0xFFFFFFFFU);
}

TEST_F(Properties, WithoutAClientsThresholdItComesFromTheCurvesOfTheSecurityLevel) {
  set(6, 1);
  EXPECT_EQ(get(12), 48U);
  Driver other;
  unsigned int value = 0;
  EXPECT_EQ(other.SetProperty(ePropLiveliness, 2), 0UL);
  EXPECT_EQ(other.GetProperty(ePropFakeDetection, value), 0UL);
  EXPECT_EQ(value, 62U);
}

TEST_F(Properties, AThresholdThatIsKnownOutlivesANewSecurityLevelAndANewDetector) {
  set(6, 1);
  EXPECT_EQ(get(12), 48U);
  set(6, 2);
  EXPECT_EQ(get(12), 48U);
  set(6, 0);
  set(6, 2);
  EXPECT_EQ(get(12), 48U);
}

// ---- opening

struct ClosedProperties : DriverFixture, ::testing::WithParamInterface<unsigned int> {
  ePropertyIDs id() const { return static_cast<ePropertyIDs>(GetParam()); }
};

TEST_P(ClosedProperties, WithoutAScannerAnswer2BeforeAnythingElse) {
  bench.unplug_all();
  unsigned int value = 7;
  EXPECT_EQ(driver.GetProperty(id(), value), 2UL);
  EXPECT_EQ(driver.SetProperty(id(), 1), 2UL);
  EXPECT_EQ(value, 7U);
  EXPECT_FALSE(driver.m_pLiveDetection->IsInit());
  EXPECT_EQ(driver.LastErrorText(), "");
}

TEST_P(ClosedProperties, OpenTheScanner) {
  unsigned int value = 7;
  try {
    driver.GetProperty(id(), value);
  } catch (const ClLXException& refusal) {
    EXPECT_EQ(refusal.GetErrorNumber(), 12);
  }
  EXPECT_TRUE(driver.m_bInitialized);
}

TEST_P(ClosedProperties, AreLoggedBeforeTheOpeningOnReading) {
  unsigned int value = 7;
  failure_of([&] { driver.GetProperty(id(), value); });
  EXPECT_EQ(story().front(), "7 KR9 scanner. Reading of KR9 scanner property. Property ID: " +
                                 std::to_string(GetParam()) + ", value: 7");
}

TEST_P(ClosedProperties, AreLoggedBeforeTheOpeningOnWriting) {
  failure_of([&] { driver.SetProperty(id(), 1); });
  EXPECT_EQ(story().front(), "7 KR9 scanner setting of property. Property ID: " +
                                 std::to_string(GetParam()) + ", value: 1");
}

INSTANTIATE_TEST_SUITE_P(Numbers, ClosedProperties,
                         ::testing::Values(3U, 6U, 7U, 8U, 12U, 13U, 5U));

}  // namespace
}  // namespace Osv::lx
