#include <gtest/gtest.h>

#include <algorithm>

#include "driver/driver_fixture.h"

namespace Osv::lx {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// The image operations that nothing in the system calls, and the switch of finger detection.
class UncalledImages : public DriverFixture {
 protected:
  UncalledImages() { open(); }

  void expect_all(unsigned char level) {
    EXPECT_TRUE(std::all_of(bitmap.Pixel(), bitmap.Pixel() + bitmap.PixelSize(),
                            [level](unsigned char pixel) { return pixel == level; }));
  }

  utilities::ClSimpleBitmap bitmap;
};

TEST_F(UncalledImages, ARawLiveBitmapIsFetchedAndTurnedWithoutTheEngine) {
  bitmap.Create(640, 480, 8, 0);
  driver.GetRowLiveBitmap(bitmap);
  EXPECT_THAT(story(), ElementsAre("7 KR9 scanner. The calibration isn't initializeted.",
                                   "ftrScanGetImageByVariableDose",
                                   "7 KR9 scanner. Calling PrepareImage function"));
}

TEST_F(UncalledImages, ARawLiveBitmapTurnsWhiteOnError4306) {
  bitmap.Create(640, 480, 8, 0);
  bitmap.SetBlack();
  bench.set_faults("ftrScanGetImageByVariableDose fails with 4306");
  driver.GetRowLiveBitmap(bitmap);
  expect_all(255);
}

TEST_F(UncalledImages, ARawLiveBitmapStaysOnError0x20000001) {
  bitmap.Create(640, 480, 8, 0);
  bitmap.SetBlack();
  bench.set_faults("ftrScanGetImageByVariableDose fails with 0x20000001");
  driver.GetRowLiveBitmap(bitmap);
  expect_all(0);
}

TEST_F(UncalledImages, ARawLiveBitmapNoticesADisconnection) {
  bitmap.Create(640, 480, 8, 0);
  bench.unplug(0);
  EXPECT_EQ(failure_of([&] { driver.GetRowLiveBitmap(bitmap); }).number, 2);
  EXPECT_FALSE(driver.m_bInitialized);
}

TEST_F(UncalledImages, AnEmptyRawLiveBitmapNeverReachesTheScanner) {
  driver.GetRowLiveBitmap(bitmap);
  EXPECT_THAT(functions(), IsEmpty());
  EXPECT_TRUE(bitmap.Empty());
}

TEST_F(UncalledImages, AReferenceImageHasTheScannersSizeAt500DotsPerInch) {
  driver.SnapRefImage(bitmap);
  EXPECT_EQ(bitmap.Width(), 640UL);
  EXPECT_EQ(bitmap.Height(), 480UL);
  EXPECT_EQ(bitmap.XPels(), 19685UL);
  EXPECT_EQ(bitmap.YPels(), 19685UL);
}

TEST_F(UncalledImages, AReferenceImageIsTakenAsItComes) {
  driver.SnapRefImage(bitmap);
  EXPECT_THAT(story(), ElementsAre("ftrScanGetImageSize", "ftrScanGetImageByVariableDose"));
}

TEST_F(UncalledImages, AReferenceImageOfAnUnreadableSizeIsRefused) {
  bench.set_faults("ftrScanGetImageSize fails with 55");
  EXPECT_EQ(failure_of([&] { driver.SnapRefImage(bitmap); }),
            (Failure{55, "Couldn't read the image size of scanner."}));
}

TEST_F(UncalledImages, AReferenceImageThatFailsIsRefusedLikeThatOfAPreparation) {
  bench.set_faults("ftrScanGetImageByVariableDose fails with 55");
  EXPECT_EQ(failure_of([&] { driver.SnapRefImage(bitmap); }),
            (Failure{55, "Capture raw image failed."}));
}

TEST_F(UncalledImages, ACreatedBitmapIsWhiteWithThePixelsPerMetreThatWereAskedFor) {
  driver.CreateBitmap(bitmap, 7, 5, 100, 200);
  EXPECT_EQ(bitmap.Width(), 7UL);
  EXPECT_EQ(bitmap.Height(), 5UL);
  EXPECT_EQ(bitmap.BitCount(), 8UL);
  EXPECT_EQ(bitmap.XPels(), 100UL);
  EXPECT_EQ(bitmap.YPels(), 200UL);
  expect_all(255);
  EXPECT_THAT(story(), ElementsAre("7 KRC scanner. Running without calibration"));
}

TEST_F(UncalledImages, FingerDetectionIsNotSuppressedBeforeTheFirstOpening) {
  const Driver fresh;
  bench.clear_journal();
  EXPECT_FALSE(fresh.SupressFingerDetection());
  EXPECT_THAT(story(), IsEmpty());
}

TEST_F(UncalledImages, SensitiveModeSuppressesFingerDetection) {
  EXPECT_FALSE(driver.SupressFingerDetection());
  driver.m_pCalibration.get()->EnableSensitiveMode(true);
  EXPECT_TRUE(driver.SupressFingerDetection());
  driver.m_pCalibration.get()->EnableSensitiveMode(false);
  EXPECT_FALSE(driver.SupressFingerDetection());
}

}  // namespace
}  // namespace Osv::lx
