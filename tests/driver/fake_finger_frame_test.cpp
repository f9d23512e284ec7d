#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <thread>

#include "driver/driver_fixture.h"
#include "driver/support/mutex_watch.h"

namespace Osv::lx {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

using Bytes = std::vector<unsigned char>;

const std::string kTrue = "'DynamicFingerMask = true'";
const std::string kFalse = "'DynamicFingerMask = false'";

bool is_white(const utilities::ClSimpleBitmap& bitmap) {
  return std::all_of(bitmap.Pixel(), bitmap.Pixel() + bitmap.PixelSize(),
                     [](unsigned char level) { return level == 255; });
}

/// A client's event callback that counts and may look around.
struct EventSink {
  int count = 0;
  int handle = 0;
  unsigned int channel = 0;
  unsigned int grabber = 0;
  unsigned int type = 99;
  std::thread::id thread;
  bool locked = false;
  Driver* driver = nullptr;

  static void take(int handle, unsigned int channel, eFGs grabber, unsigned int type, void* user) {
    auto& sink = *static_cast<EventSink*>(user);
    ++sink.count;
    sink.handle = handle;
    sink.channel = channel;
    sink.grabber = grabber;
    sink.type = type;
    sink.thread = std::this_thread::get_id();
    sink.locked = testing_support::is_held(sink.driver->m_cLock);
  }
};

/// Takes an image of its own from inside the first event, and switches detection off.
void snap_and_switch_off(int, unsigned int channel, eFGs, unsigned int, void* user) {
  auto& driver = *static_cast<Driver*>(user);
  driver.EnableEvents(0, 0, nullptr, nullptr);
  unsigned char* image = nullptr;
  driver.Snap(channel, &image);
  delete[] image;
  driver.SetProperty(ePropLiveliness, 0);
}

/// A prepared channel with fake finger detection on and the threshold at 50.
class FakeFingerFrame : public DriverFixture {
 protected:
  FakeFingerFrame() {
    bench.set_timeline(simulator::Timeline::settled_finger());
    driver.m_pLiveDetection->Init();
    driver.m_pLiveDetection->SetFakeScore(50);
    sink.driver = &driver;
    driver.EnableEvents(0, 23, &EventSink::take, &sink);
    prepare(bitmap);
  }

  void fetch() { driver.GetLiveBitmap(driver.channel(), bitmap); }

  /// Plans the score that the detector gives.
  void score(const std::string& value) {
    bench.set_faults("FakeFingerDetectionEvaluateLiveliness gives " + value);
  }

  utilities::ClSimpleBitmap bitmap;
  EventSink sink;
};

TEST_F(FakeFingerFrame, ImagesAreFetchedTurnedCorrectedAndPushedInTheirOrder) {
  score("90");
  fetch();
  const std::string calibrate = "7 KR9 scanner. Calibrate, a image size: 308264";
  const std::string turn = "7 KR9 scanner. Calling PrepareImage function";
  EXPECT_THAT(story(),
              ElementsAre("ftrScanGetImageSize", "CalibrateSetOption",                    //
                          "ftrScanGetDarkImage", "ftrScanGetBacklightImage",              //
                          "ftrScanGetImageByVariableDose",                                //
                          turn, turn, turn,                                               //
                          calibrate, "Calibrate", "FakeFingerDetectionSetImage",          //
                          calibrate, "Calibrate", "FakeFingerDetectionSetImage",          //
                          calibrate, "Calibrate", "FakeFingerDetectionSetImage",          //
                          "FakeFingerDetectionEvaluateLiveliness", "CalibrateSetOption",  //
                          calibrate, "Calibrate", "FakeFingerDetectionReset",             //
                          "CalibrateSetOption"));
}

TEST_F(FakeFingerFrame, DynamicCalibrationIsOffUntilTheLastImage) {
  fetch();
  EXPECT_THAT(journal("CalibrateSetOption"),
              ElementsAre(HasSubstr(kFalse), HasSubstr(kTrue), HasSubstr(kTrue)));
}

TEST_F(FakeFingerFrame, BacklightDarkAndDoseImageArePushedInThisOrder) {
  fetch();
  EXPECT_THAT(
      journal("FakeFingerDetectionSetImage"),
      ElementsAre(HasSubstr("kind 1 backlight, size 220064"), HasSubstr("kind 2 dark, size 220064"),
                  HasSubstr("kind 0 dose, size 220064")));
}

TEST_F(FakeFingerFrame, TheEngineIsToldTheRawSizeFirstAndThenWhatItUsed) {
  fetch();
  EXPECT_THAT(journal("Calibrate"),
              ElementsAre(HasSubstr("output buffer, size 308264"), HasSubstr("size 220064) ="),
                          HasSubstr("size 220064) ="), HasSubstr("size 220064) =")));
}

TEST_F(FakeFingerFrame, TheCalibratedSizeIsNotTouched) {
  const unsigned long before = driver.m_nCalibratedSize;
  fetch();
  EXPECT_EQ(driver.m_nCalibratedSize, before);
}

TEST_F(FakeFingerFrame, TheDoseImageIsTakenAtDose60) {
  fetch();
  EXPECT_THAT(journal("ftrScanGetImageByVariableDose"), ElementsAre(HasSubstr("dose 60")));
}

TEST_F(FakeFingerFrame, ScoreAndStateAreKept) {
  bench.set_faults(
      "FakeFingerDetectionEvaluateLiveliness gives 61.5;"
      "FakeFingerDetectionEvaluateLiveliness answers -768");
  fetch();
  EXPECT_EQ(driver.m_dLifeness, 61.5);
  EXPECT_EQ(driver.m_nLifenessState, -768);
}

TEST_F(FakeFingerFrame, ASecondFrameBeginsWithState0) {
  bench.set_faults("FakeFingerDetectionEvaluateLiveliness call 1 answers -768");
  fetch();
  fetch();
  EXPECT_EQ(driver.m_nLifenessState, 0);
}

TEST_F(FakeFingerFrame, AScoreAboveTheThresholdIsNoEvent) {
  score("50.01");
  fetch();
  EXPECT_EQ(sink.count, 0);
}

TEST_F(FakeFingerFrame, AScoreEqualToTheThresholdFiresTheEvent) {
  score("50");
  fetch();
  EXPECT_EQ(sink.count, 1);
}

TEST_F(FakeFingerFrame, AScoreBelowTheThresholdFiresTheEvent) {
  score("49.99");
  fetch();
  EXPECT_EQ(sink.count, 1);
}

TEST_F(FakeFingerFrame, AScoreThatIsNoNumberFiresTheEvent) {
  score("nan");
  fetch();
  EXPECT_TRUE(std::isnan(driver.m_dLifeness));
  EXPECT_EQ(sink.count, 1);
}

TEST_F(FakeFingerFrame, TheEventHasTheClientsHandleChannel1Number19AndType0) {
  score("0");
  fetch();
  EXPECT_EQ(sink.handle, 23);
  EXPECT_EQ(sink.channel, 1U);
  EXPECT_EQ(sink.grabber, 19U);
  EXPECT_EQ(sink.type, 0U);
}

TEST_F(FakeFingerFrame, TheEventComesOnTheFetchingThreadUnderTheDriversLock) {
  score("0");
  fetch();
  EXPECT_EQ(sink.thread, std::this_thread::get_id());
  EXPECT_TRUE(sink.locked);
}

TEST_F(FakeFingerFrame, AFakeFingerIsDeliveredAllTheSame) {
  score("0");
  fetch();
  EXPECT_FALSE(is_white(bitmap));
  EXPECT_EQ(bitmap.Width(), 498UL);
}

TEST_F(FakeFingerFrame, AnImageTakenInsideTheEventHasRawFramesOfItsOwn) {
  score("0");
  driver.EnableEvents(0, 0, &snap_and_switch_off, &driver);
  fetch();
  EXPECT_FALSE(is_white(bitmap));
  EXPECT_EQ(bench.count("ftrScanGetDarkImage"), 2U);
  EXPECT_FALSE(driver.m_pLiveDetection->IsInit());
}

TEST_F(FakeFingerFrame, TheThresholdIsAskedForBehindTheReset) {
  Driver fresh;
  fresh.m_pLiveDetection->Init();
  utilities::ClSimpleBitmap frame;
  ASSERT_EQ(fresh.SetActiveChannel(fresh.channel(), frame), 0UL);
  bench.clear_journal();
  fresh.GetLiveBitmap(fresh.channel(), frame);
  const auto names = functions();
  const auto reset = std::find(names.begin(), names.end(), "FakeFingerDetectionReset");
  const auto walk = std::find(names.begin(), names.end(), "FakeFingerDetectionSetPropertyA");
  EXPECT_LT(reset, walk);
  EXPECT_NE(walk, names.end());
}

TEST_F(FakeFingerFrame, ThePlainPathIsTakenAgainOnceTheSessionEnds) {
  driver.m_pLiveDetection->Uninit();
  bench.clear_journal();
  fetch();
  EXPECT_THAT(functions(), ElementsAre("ftrScanGetImageByVariableDose", "Calibrate"));
}

TEST_F(FakeFingerFrame, AnUnreadableSizeIsRefusedBeforeTheGuardStands) {
  bench.set_faults("ftrScanGetImageSize fails with 55");
  EXPECT_EQ(failure_of([&] { fetch(); }),
            (Failure{55, "Couldn't read the image size of scanner."}));
  EXPECT_EQ(bench.count("CalibrateSetOption"), 0U);
}

TEST_F(FakeFingerFrame, Error4306OnTheDarkImageGivesAWhiteBitmapAndAResetSession) {
  score("90");
  fetch();
  bench.clear_journal();
  bench.set_faults("ftrScanGetDarkImage fails with 4306");
  fetch();
  EXPECT_TRUE(is_white(bitmap));
  EXPECT_EQ(driver.m_dLifeness, 0.0);
  EXPECT_THAT(functions(),
              ElementsAre("ftrScanGetImageSize", "CalibrateSetOption", "ftrScanGetDarkImage",
                          "ftrScanGetLastError", "FakeFingerDetectionReset", "CalibrateSetOption"));
}

TEST_F(FakeFingerFrame, Error4306OnTheBacklightImageLeavesTheDoseImageUnfetched) {
  bench.set_faults("ftrScanGetBacklightImage fails with 4306");
  fetch();
  EXPECT_TRUE(is_white(bitmap));
  EXPECT_EQ(bench.count("ftrScanGetImageByVariableDose"), 0U);
}

TEST_F(FakeFingerFrame, AResetKeepsTheState) {
  bench.set_faults("FakeFingerDetectionEvaluateLiveliness call 1 answers -768");
  fetch();
  driver.ResetLD(bitmap);
  EXPECT_EQ(driver.m_dLifeness, 0.0);
  EXPECT_EQ(driver.m_nLifenessState, -768);
}

TEST_F(FakeFingerFrame, Error0x20000001OnTheDoseImageScoresWhatWasFetched) {
  bench.set_faults("ftrScanGetImageByVariableDose fails with 0x20000001");
  fetch();
  EXPECT_EQ(bench.count("FakeFingerDetectionSetImage"), 3U);
  EXPECT_EQ(bench.count("FakeFingerDetectionEvaluateLiveliness"), 1U);
}

TEST_F(FakeFingerFrame, Error0x20000001OnTheDarkImageFetchesNoOther) {
  bench.set_faults("ftrScanGetDarkImage fails with 0x20000001");
  fetch();
  EXPECT_EQ(bench.count("ftrScanGetBacklightImage"), 0U);
  EXPECT_EQ(bench.count("ftrScanGetImageByVariableDose"), 0U);
  EXPECT_EQ(bench.count("FakeFingerDetectionSetImage"), 3U);
}

TEST_F(FakeFingerFrame, ImagesThatWereNotFetchedAreBlackAndSoComeOutWithoutChance) {
  bench.set_faults("ftrScanGetDarkImage fails with 0x20000001");
  fetch();
  const Bytes first(bitmap.Pixel(), bitmap.Pixel() + bitmap.PixelSize());
  fetch();
  EXPECT_TRUE(std::equal(first.begin(), first.end(), bitmap.Pixel()));
}

TEST_F(FakeFingerFrame, AnUnpluggedScannerShowsAsAnUnreadableSizeAndIsNotClosed) {
  bench.unplug(0);
  EXPECT_EQ(failure_of([&] { fetch(); }), (Failure{2, "Couldn't read the image size of scanner."}));
  EXPECT_TRUE(driver.m_bInitialized);
}

TEST_F(FakeFingerFrame, AScannerUnpluggedBehindItsSizeIsADisconnection) {
  bench.set_faults("ftrScanGetDarkImage fails with 259");
  EXPECT_EQ(failure_of([&] { fetch(); }),
            (Failure{2, "KR9 scanner is disconnected from the host, error: 2"}));
  EXPECT_FALSE(driver.m_bInitialized);
}

TEST_F(FakeFingerFrame, Error31OnTheBacklightImageIsADisconnection) {
  bench.set_faults("ftrScanGetBacklightImage fails with 31");
  EXPECT_EQ(failure_of([&] { fetch(); }),
            (Failure{2, "KR9 scanner is disconnected from the host, error: 2"}));
  EXPECT_FALSE(driver.m_bInitialized);
  EXPECT_THAT(journal("CalibrateSetOption"), ElementsAre(HasSubstr(kFalse), HasSubstr(kTrue)));
}

TEST_F(FakeFingerFrame, Code15BelowZeroIsSwallowedWithAWhiteImageAndAResetSession) {
  score("90");
  fetch();
  bench.clear_journal();
  bench.set_faults("FakeFingerDetectionEvaluateLiveliness fails with -15");
  fetch();
  EXPECT_TRUE(is_white(bitmap));
  EXPECT_EQ(driver.m_dLifeness, 0.0);
  EXPECT_EQ(functions().back(), "FakeFingerDetectionReset");
  EXPECT_EQ(sink.count, 0);
}

TEST_F(FakeFingerFrame, Code15BelowZeroIsSwallowedBehindTheGuard) {
  bench.set_faults("FakeFingerDetectionSetImage call 2 fails with -15");
  fetch();
  const auto names = functions();
  ASSERT_GE(names.size(), 2U);
  EXPECT_EQ(names[names.size() - 2], "CalibrateSetOption");
  EXPECT_EQ(names.back(), "FakeFingerDetectionReset");
}

struct GuardCase {
  const char* faults;
  int number;

  friend std::ostream& operator<<(std::ostream& out, const GuardCase& path) {
    return out << path.faults;
  }
};

struct GuardedPaths : FakeFingerFrame, ::testing::WithParamInterface<GuardCase> {};

TEST_P(GuardedPaths, EndWithDynamicCalibrationOnAndPassTheFailureOn) {
  bench.set_faults(GetParam().faults);
  try {
    fetch();
    FAIL() << "no failure";
  } catch (const CXOtherException& failure) {
    EXPECT_EQ(failure.GetErrorNumber(), GetParam().number);
  }
  EXPECT_THAT(journal("CalibrateSetOption").back(), HasSubstr(kTrue));
}

INSTANTIATE_TEST_SUITE_P(
    Failures, GuardedPaths,
    ::testing::Values(GuardCase{"ftrScanGetDarkImage fails with 55", 55},
                      GuardCase{"ftrScanGetBacklightImage fails with 55", 55},
                      GuardCase{"ftrScanGetImageByVariableDose fails with 55", 55},
                      GuardCase{"Calibrate call 1 fails with -6", -6},
                      GuardCase{"Calibrate call 4 fails with -6", -6},
                      GuardCase{"FakeFingerDetectionSetImage call 1 fails with -3", -3},
                      GuardCase{"FakeFingerDetectionEvaluateLiveliness fails with -800", -800},
                      GuardCase{"FakeFingerDetectionReset fails with -2", -2}));

TEST_F(FakeFingerFrame, AGuardThatCannotBeSetStopsTheFrame) {
  bench.set_faults("CalibrateSetOption of 'DynamicFingerMask = false' fails with -37");
  EXPECT_EQ(failure_of([&] { fetch(); }).number, -37);
  EXPECT_EQ(bench.count("ftrScanGetDarkImage"), 0U);
}

TEST_F(FakeFingerFrame, AGuardThatCannotBeReleasedIsLoggedAndTheFrameStands) {
  score("90");
  bench.set_faults(
      "FakeFingerDetectionEvaluateLiveliness gives 90;"
      "CalibrateSetOption call 3 fails with -37");
  fetch();
  EXPECT_FALSE(is_white(bitmap));
  EXPECT_THAT(log_lines().back(),
              HasSubstr("3 KR9 scanner, failed to enbalbe dynamic calibration. Message: "));
}

}  // namespace
}  // namespace Osv::lx
