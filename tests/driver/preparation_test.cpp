#include <gtest/gtest.h>

#include <boost/make_shared.hpp>

#include "driver/driver_fixture.h"
#include "foundation/image_functions.h"
#include "ostrevanhvk3/errors.h"

namespace Osv::lx {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class Preparation : public DriverFixture {
 protected:
  unsigned long set_active() { return driver.SetActiveChannel(driver.channel(), bitmap); }

  /// Makes this thread the worker of the channel and `bitmap` the one that it delivers.
  utilities::ClSimpleBitmap& worker_bitmap() {
    driver.channel().SetCurrentThread();
    driver.channel().get_capture_bitmap() = boost::make_shared<utilities::ClSimpleBitmap>();
    return *driver.channel().get_currrent_bitmap();
  }

  utilities::ClSimpleBitmap bitmap;
};

TEST_F(Preparation, ItReadsTheSizeTakesOneFrameAsksForTheSizeAndCorrects) {
  open();
  EXPECT_EQ(set_active(), 0UL);
  EXPECT_THAT(
      story(),
      ElementsAre("7 KR9 scanner. Calling SetActiveChannel function. Channel number: 1",
                  "ftrScanGetImageSize",  //
                  "7 KR9 scanner. The image width: 640, height: 480",
                  "7 KR9 scanner. Preparation of calibration", "ftrScanGetImageByVariableDose",
                  "Calibrate", "7 KR9 scanner. Calibrated image size: 220064",
                  "7 KR9 scanner. Calibrate, a image size: 308264", "Calibrate"));
}

TEST_F(Preparation, ItOpensTheScanner) {
  EXPECT_EQ(set_active(), 0UL);
  EXPECT_TRUE(driver.m_bInitialized);
}

TEST_F(Preparation, TheFrameIsTakenAtDose60) {
  set_active();
  EXPECT_THAT(journal("ftrScanGetImageByVariableDose"), ElementsAre(HasSubstr("dose 60")));
}

TEST_F(Preparation, TheEngineIsAskedWithTheRawSizeAndThenGetsTheCalibratedSize) {
  set_active();
  EXPECT_THAT(journal("Calibrate"),
              ElementsAre(HasSubstr("input 308264, output null, size 0"),
                          HasSubstr("input 308264, output buffer, size 220064")));
}

TEST_F(Preparation, TheBitmapIsWhiteAndHasTheFinalShape) {
  set_active();
  EXPECT_EQ(bitmap.Width(), 498UL);
  EXPECT_EQ(bitmap.Height(), 438UL);
  EXPECT_EQ(bitmap.XPels(), 19685UL);
  EXPECT_EQ(bitmap.FullSize(), driver.m_nCalibratedSize);
  EXPECT_TRUE(std::all_of(bitmap.Pixel(), bitmap.Pixel() + bitmap.PixelSize(),
                          [](unsigned char level) { return level == 255; }));
}

TEST_F(Preparation, TheRawBitmapHasTheScannersShape) {
  set_active();
  EXPECT_EQ(driver.m_cRawBitmap.Width(), 640UL);
  EXPECT_EQ(driver.m_cRawBitmap.Height(), 480UL);
  EXPECT_EQ(driver.m_cRawBitmap.BitCount(), 8UL);
  EXPECT_EQ(driver.m_cRawBitmap.BI()->biCompression, 0U);
}

TEST_F(Preparation, ItDescribesTheCameraAndLeavesItsIdAndColourMode) {
  ClLXCamera& camera = driver.channel().m_Camera;
  camera.m_eCamera = eCamera4;
  camera.m_bFlagA = camera.m_bFlagB = true;
  camera.m_nLeft = camera.m_nTop = 5;
  set_active();
  EXPECT_EQ(camera.m_eCamera, eCamera4);
  EXPECT_EQ(camera.m_nWidth, 640U);
  EXPECT_EQ(camera.m_nHeight, 480U);
  EXPECT_EQ(camera.get_x(), 19685U);
  EXPECT_EQ(camera.get_y(), 19685U);
  EXPECT_FALSE(camera.m_bFlagA || camera.m_bFlagB);
  EXPECT_EQ(camera.m_nLeft, 0);
  EXPECT_EQ(camera.m_nTop, 0);
}

TEST_F(Preparation, TheChannelIsTheActiveOneAfterwards) {
  set_active();
  EXPECT_EQ(driver.m_nActiveChannel, 1U);
}

TEST_F(Preparation, ABitmapOfTheActiveChannelTakesNoFrame) {
  set_active();
  bench.clear_journal();
  EXPECT_EQ(set_active(), 0UL);
  EXPECT_THAT(story(), IsEmpty());
}

TEST_F(Preparation, AnEmptyBitmapIsPreparedEvenForTheActiveChannel) {
  set_active();
  bench.clear_journal();
  bitmap.Clear();
  EXPECT_EQ(set_active(), 0UL);
  EXPECT_EQ(bench.count("ftrScanGetImageByVariableDose"), 1U);
  EXPECT_FALSE(bitmap.Empty());
}

TEST_F(Preparation, AnotherChannelNumberIsPrepared) {
  set_active();
  driver.channel().m_nChannel = 2;
  EXPECT_EQ(set_active(), 0UL);
  EXPECT_EQ(bench.count("ftrScanGetImageByVariableDose"), 2U);
  EXPECT_EQ(driver.m_nActiveChannel, 2U);
}

TEST_F(Preparation, TheMarkOfNoChannelWithAnEmptyBitmapTouchesNothing) {
  driver.m_nActiveChannel = 1;
  driver.channel().m_nChannel = 65535;
  EXPECT_EQ(set_active(), 0UL);
  EXPECT_EQ(driver.m_nActiveChannel, 65535U);
  EXPECT_THAT(story(), IsEmpty());
}

TEST_F(Preparation, WithoutAScannerTheResultIs2AndNoChannelIsActive) {
  bench.unplug_all();
  EXPECT_EQ(set_active(), 2UL);
  EXPECT_EQ(driver.m_nActiveChannel, 65535U);
  EXPECT_TRUE(bitmap.Empty());
}

TEST_F(Preparation, WithoutACalibrationItIsRefusedAsADisconnection) {
  open();
  driver.m_pCalibration.reset();
  EXPECT_EQ(failure_of([&] { set_active(); }),
            (Failure{error_number::NotConnected, error_text::NotConnected}));
  EXPECT_TRUE(bitmap.Empty());
}

TEST_F(Preparation, AnUnreadableSizeIsRefusedWithTheScannersNumber) {
  bench.set_faults("ftrScanGetImageSize fails with 55");
  EXPECT_EQ(failure_of([&] { set_active(); }),
            (Failure{55, "Couldn't read the image size of scanner."}));
}

TEST_F(Preparation, AFrameThatFailsIsLoggedAtLevel3AndRefused) {
  bench.set_faults("ftrScanGetImageByVariableDose fails with 55");
  EXPECT_EQ(failure_of([&] { set_active(); }), (Failure{55, "Capture raw image failed."}));
  EXPECT_EQ(log_lines().back(),
            "3 KR9 scanner. CaptureFuzzyImage function failed. Error number: 0x37");
}

TEST_F(Preparation, ADisconnectionDoesNotCloseTheScanner) {
  bench.set_faults("ftrScanGetImageByVariableDose fails with 259");
  EXPECT_EQ(failure_of([&] { set_active(); }), (Failure{2, "Capture raw image failed."}));
  EXPECT_TRUE(driver.m_bInitialized);
  EXPECT_EQ(driver.LastErrorText(), "");
}

TEST_F(Preparation, AFailedOneLeavesNoChannelActiveAndTheNextSucceeds) {
  bench.set_faults("ftrScanGetImageByVariableDose call 1 fails with 55");
  failure_of([&] { set_active(); });
  EXPECT_EQ(driver.m_nActiveChannel, 65535U);
  EXPECT_TRUE(bitmap.Empty());
  EXPECT_EQ(set_active(), 0UL);
}

TEST_F(Preparation, AnEngineThatCorrectsNothingIsRefusedWithItsCode) {
  bench.set_faults("Calibrate call 2 fails with -5");
  EXPECT_EQ(failure_of([&] { set_active(); }).number, -5);
  EXPECT_TRUE(bitmap.Empty());
}

TEST_F(Preparation, AnAbsurdSizeOfTheCorrectedImageIsOutOfMemory) {
  bench.set_faults("Calibrate call 1 answers 0 with size 0x4000000000000000");
  EXPECT_THROW(set_active(), CXMemoryAllocException);
  EXPECT_TRUE(bitmap.Empty());
}

struct AbsurdSizes : Preparation, ::testing::WithParamInterface<const char*> {};

TEST_P(AbsurdSizes, AreRefusedBeforeAFrameIsTaken) {
  bench.set_faults(std::string("ftrScanGetImageSize gives ") + GetParam());
  EXPECT_THROW(set_active(), CXMemoryAllocException);
  EXPECT_EQ(bench.count("ftrScanGetImageByVariableDose"), 0U);
}

INSTANTIATE_TEST_SUITE_P(Sizes, AbsurdSizes,
                         ::testing::Values("-1 x 480", "640 x -480", "-640 x -480", "0 x 480",
                                           "640 x 0", "2147483647 x 2147483647"));

TEST_F(Preparation, AChannelThatIsNotTheActiveOneIsDirty) {
  utilities::ClSimpleBitmap& frame = worker_bitmap();
  EXPECT_TRUE(driver.IsDirty(driver.channel()));
  prepare(frame);
  EXPECT_FALSE(driver.IsDirty(driver.channel()));
  driver.channel().m_nChannel = 2;
  EXPECT_TRUE(driver.IsDirty(driver.channel()));
}

TEST_F(Preparation, AWorkersBitmapShapedBeforeThePresentOpeningIsDirtyAndPreparedAgain) {
  utilities::ClSimpleBitmap& frame = worker_bitmap();
  prepare(frame);
  driver.UninitializeScanner();
  ASSERT_EQ(driver.InitializeScanner(), 0UL);
  EXPECT_TRUE(driver.IsDirty(driver.channel()));
  EXPECT_EQ(driver.SetActiveChannel(driver.channel(), frame), 0UL);
  EXPECT_EQ(bench.count("ftrScanGetImageByVariableDose"), 1U);
  EXPECT_FALSE(driver.IsDirty(driver.channel()));
}

TEST_F(Preparation, ASnapMeanwhileDoesNotMakeTheWorkersBitmapClean) {
  utilities::ClSimpleBitmap& frame = worker_bitmap();
  prepare(frame);
  driver.UninitializeScanner();
  unsigned char* image = nullptr;
  ASSERT_EQ(driver.Snap(1, &image), 0UL);
  delete[] image;
  EXPECT_TRUE(driver.IsDirty(driver.channel()));
}

TEST_F(Preparation, AFrameIntoABitmapOfAnEarlierOpeningIsPreparedFirst) {
  prepare(bitmap);
  driver.UninitializeScanner();
  ASSERT_EQ(driver.InitializeScanner(), 0UL);
  bench.clear_journal();
  driver.GetLiveBitmap(driver.channel(), bitmap);
  EXPECT_EQ(bench.count("ftrScanGetImageSize"), 1U);
  EXPECT_EQ(bench.count("ftrScanGetImageByVariableDose"), 2U);
}

TEST_F(Preparation, AFrameIntoAnEmptyBitmapIsPreparedFirst) {
  driver.GetLiveBitmap(driver.channel(), bitmap);
  EXPECT_EQ(bench.count("ftrScanGetImageByVariableDose"), 2U);
  EXPECT_EQ(bitmap.Width(), 498UL);
}

TEST_F(Preparation, AFrameIntoAnEmptyBitmapWithoutAScannerIsADisconnection) {
  bench.unplug_all();
  EXPECT_EQ(failure_of([&] { driver.GetLiveBitmap(driver.channel(), bitmap); }),
            (Failure{2, "KR9 scanner is disconnected from the host, error: 2"}));
}

TEST_F(Preparation, AFrameWhoseOpeningFailsWithANumberThatAFetchPassesOverIsRefusedAllTheSame) {
  open();
  driver.UninitializeScanner();
  bench.set_faults("ftrScanOpenDeviceOnInterface call 2 fails with 4306");  // call 1 lists
  EXPECT_EQ(failure_of([&] { driver.GetLiveBitmap(driver.channel(), bitmap); }),
            (Failure{4306, "Failed to initialize KR9-scanner."}));
}

TEST_F(Preparation, AFrameIntoTheBitmapOfThePresentOpeningIsNotPrepared) {
  prepare(bitmap);
  driver.GetLiveBitmap(driver.channel(), bitmap);
  EXPECT_EQ(bench.count("ftrScanGetImageSize"), 0U);
}

}  // namespace
}  // namespace Osv::lx
