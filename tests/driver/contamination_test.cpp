#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "driver/driver_fixture.h"

namespace Osv::lx {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class Contamination : public DriverFixture {
 protected:
  double level = 7;
};

TEST_F(Contamination, OfACleanPlatenIsAlmostNone) {
  EXPECT_EQ(driver.ContaminationDetection(1, &level), 0UL);
  EXPECT_GE(level, 0);
  EXPECT_LT(level, 1);
}

TEST_F(Contamination, IsWhatTheEngineMeasures) {
  bench.set_faults("ContaminationDetection gives 33.5");
  EXPECT_EQ(driver.ContaminationDetection(1, &level), 0UL);
  EXPECT_EQ(level, 33.5);
}

TEST_F(Contamination, OfAFingerIsMuch) {
  bench.set_timeline(simulator::Timeline::settled_finger());
  EXPECT_EQ(driver.ContaminationDetection(1, &level), 0UL);
  EXPECT_GT(level, 5);
}

TEST_F(Contamination, TakesOneFrameAtDose60AndTurnsItButCorrectsNone) {
  open();
  EXPECT_EQ(driver.ContaminationDetection(1, &level), 0UL);
  EXPECT_THAT(story(), ElementsAre("ftrScanGetImageSize", "ftrScanGetImageByVariableDose",
                                   "7 KR9 scanner. Calling PrepareImage function",
                                   "ContaminationDetection"));
  EXPECT_THAT(journal("ftrScanGetImageByVariableDose"), ElementsAre(HasSubstr("dose 60")));
}

TEST_F(Contamination, LeavesTheBitmapOfTheCaptureAlone) {
  utilities::ClSimpleBitmap bitmap;
  prepare(bitmap);
  driver.m_cRawBitmap.SetBlack();  // as no frame is
  const tagBITMAPINFOHEADER* const block = driver.m_cRawBitmap.BI();
  const tagBITMAPINFOHEADER header = *block;
  EXPECT_EQ(driver.ContaminationDetection(1, &level), 0UL);
  ASSERT_EQ(driver.m_cRawBitmap.BI(), block);
  EXPECT_EQ(std::memcmp(block, &header, sizeof(header)), 0);
  const unsigned char* const pixels = driver.m_cRawBitmap.Pixel();
  EXPECT_TRUE(std::all_of(pixels, pixels + driver.m_cRawBitmap.PixelSize(),
                          [](unsigned char pixel) { return pixel == 0; }));
}

TEST_F(Contamination, IsMeasuredOnABitmapWhosePelsWereConvertedTwice) {
  open();
  utilities::ClSimpleBitmap bitmap;
  driver.CaptureUncorrected(bitmap);
  EXPECT_EQ(bitmap.BI()->biXPelsPerMeter, 774998);
  EXPECT_EQ(bitmap.BI()->biYPelsPerMeter, 774998);
  EXPECT_EQ(bitmap.BI()->biBitCount, 8U);
  EXPECT_EQ(bitmap.Width(), 640UL);
  EXPECT_EQ(bitmap.Height(), 480UL);
}

TEST_F(Contamination, OfAnotherChannelIsRefusedBeforeTheScannerIsTouched) {
  for (const unsigned int channel : {0U, 2U}) {
    EXPECT_EQ(failure_of([&] { driver.ContaminationDetection(channel, &level); }),
              (Failure{4, "Incorrect channel number for frame grabber"}));
  }
  EXPECT_EQ(failure_of([&] { driver.ContaminationDetection(2, nullptr); }).number, 4);
  EXPECT_EQ(level, 7);
  EXPECT_THAT(story(), IsEmpty());
}

TEST_F(Contamination, IntoNothingIsRefusedWith60AndNoTextBeforeTheScannerIsTouched) {
  EXPECT_EQ(failure_of([&] { driver.ContaminationDetection(1, nullptr); }), (Failure{60, ""}));
  EXPECT_THAT(story(), IsEmpty());
}

TEST_F(Contamination, WithoutAScannerIsA2AndTheLevelStays) {
  bench.unplug_all();
  EXPECT_EQ(driver.ContaminationDetection(1, &level), 2UL);
  EXPECT_EQ(level, 7);
}

TEST_F(Contamination, OfAFrameThatFailsIsRefusedAndTheLevelIs0) {
  open();
  bench.set_faults("ftrScanGetImageByVariableDose fails with 31");
  EXPECT_EQ(failure_of([&] { driver.ContaminationDetection(1, &level); }),
            (Failure{31, "Capture image failed."}));
  EXPECT_EQ(level, 0.0);
  EXPECT_TRUE(driver.m_bInitialized);
  EXPECT_EQ(bench.count("ContaminationDetection"), 0U);
}

TEST_F(Contamination, OfAScannerThatIsGoneIsRefusedInTheSameWords) {
  open();
  bench.unplug(0);
  EXPECT_EQ(failure_of([&] { driver.ContaminationDetection(1, &level); }),
            (Failure{2, "Capture image failed."}));
  EXPECT_TRUE(driver.m_bInitialized);
}

TEST_F(Contamination, IsMeasuredAlsoWhenTheSizeIsGivenWithAFailure) {
  open();
  bench.set_faults("ftrScanGetImageSize answers 0");
  EXPECT_EQ(driver.ContaminationDetection(1, &level), 0UL);
  EXPECT_LT(level, 1);
}

TEST_F(Contamination, OfAnAbsurdSizeTakesNoFrame) {
  open();
  for (const char* size : {"-1 x 480", "640 x -1", "0 x 480", "640 x 0"}) {
    bench.set_faults(std::string("ftrScanGetImageSize gives ") + size);
    EXPECT_THROW(driver.ContaminationDetection(1, &level), CXMemoryAllocException) << size;
  }
  EXPECT_EQ(bench.count("ftrScanGetImageByVariableDose"), 0U);
}

TEST_F(Contamination, OfASizeWithoutOneSideBesideAFailureTakesNoFrame) {
  open();
  for (const char* size : {"0 x 480", "640 x 0"}) {
    bench.set_faults(std::string("ftrScanGetImageSize gives ") + size +
                     ";ftrScanGetImageSize answers 0");
    EXPECT_EQ(failure_of([&] { driver.ContaminationDetection(1, &level); }),
              (Failure{0, "Capture image failed."}));
  }
  EXPECT_EQ(bench.count("ftrScanGetImageByVariableDose"), 0U);
}

TEST_F(Contamination, ThatTheEngineRefusesIsItsFailure) {
  open();
  bench.set_faults("ContaminationDetection fails with -6");
  EXPECT_EQ(failure_of([&] { driver.ContaminationDetection(1, &level); }).number, -6);
  EXPECT_EQ(level, 0.0);
}

}  // namespace
}  // namespace Osv::lx
