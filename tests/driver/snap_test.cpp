#include <gtest/gtest.h>

#include <memory>

#include "driver/driver_fixture.h"

namespace Osv::lx {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A driver that notes when a pass begins and ends.
struct BracketedDriver : Driver {
  bool Lock() override {
    ++locks;
    return Driver::Lock();
  }
  void UnLock() override {
    ++unlocks;
    delivered = image != nullptr && *image != nullptr;
  }

  int locks = 0;
  int unlocks = 0;
  unsigned char** image = nullptr;  ///< where the snap delivers, to be looked at
  bool delivered = false;           ///< when the last pass ended
};

class Snap : public LoggedFixture {
 protected:
  Snap() { bench.clear_journal(); }

  unsigned long snap(unsigned int channel = 1) {
    unsigned char* block = nullptr;
    const unsigned long result = driver.Snap(channel, &block);
    image.reset(block);
    return result;
  }

  BracketedDriver driver;
  std::unique_ptr<unsigned char[]> image;
};

TEST_F(Snap, ItIsLoggedWithTheChannel) {
  snap();
  EXPECT_EQ(log_lines().front(), "7 KR9 scanner. Calling Snap function. Channel number: 1");
}

TEST_F(Snap, ANullPointerGives60AndTheScannerIsNotTouched) {
  EXPECT_EQ(driver.Snap(1, nullptr), 60UL);
  EXPECT_THAT(story(), ElementsAre("7 KR9 scanner. Calling Snap function. Channel number: 1"));
}

TEST_F(Snap, ANullPointerIsFoundBeforeAWrongChannel) { EXPECT_EQ(driver.Snap(9, nullptr), 60UL); }

TEST_F(Snap, AChannelOutOfRangeIsRefusedWithNumber4) {
  EXPECT_EQ(failure_of([&] { snap(2); }),
            (Failure{4, "Incorrect channel number for frame grabber"}));
  EXPECT_THAT(functions(), IsEmpty());
  EXPECT_EQ(driver.locks, 0);
}

TEST_F(Snap, ItGivesABlockOfTheFinalSize) {
  EXPECT_EQ(snap(), 0UL);
  ASSERT_NE(image, nullptr);
  const auto* const header = reinterpret_cast<const tagBITMAPINFOHEADER*>(image.get());
  EXPECT_EQ(header->biWidth, 498);
  EXPECT_EQ(header->biHeight, 438);
  EXPECT_EQ(header->biBitCount, 8);
}

TEST_F(Snap, ItTakesOneFrameForTheShapeAndOneForTheImageEachTime) {
  snap();
  EXPECT_EQ(bench.count("ftrScanGetImageByVariableDose"), 2U);
  snap();
  EXPECT_EQ(bench.count("ftrScanGetImageByVariableDose"), 4U);
  EXPECT_EQ(bench.count("ftrScanGetImageSize"), 2U);
}

TEST_F(Snap, WithoutAScannerTheResultIs2AndTheImageIsNotWritten) {
  bench.unplug_all();
  EXPECT_EQ(snap(), 2UL);
  EXPECT_EQ(image, nullptr);
}

TEST_F(Snap, ItIsOnePassOnEveryPath) {
  snap();
  bench.set_faults("ftrScanGetImageByVariableDose call 2 fails with 55");
  failure_of([&] { snap(); });
  bench.set_faults("ftrScanGetImageSize fails with 55");
  failure_of([&] { snap(); });
  driver.UninitializeScanner();
  bench.unplug_all();
  snap();
  EXPECT_EQ(driver.locks, 4);
  EXPECT_EQ(driver.unlocks, 4);
}

TEST_F(Snap, ItsImageIsTheCallersBeforeThePassEnds) {
  unsigned char* block = nullptr;
  driver.image = &block;
  EXPECT_EQ(driver.Snap(1, &block), 0UL);
  image.reset(block);
  EXPECT_TRUE(driver.delivered);
}

TEST_F(Snap, AFailureOfTheImageIsJudgedAsThatOfAFrame) {
  bench.set_faults("ftrScanGetImageByVariableDose call 2 fails with 31");
  EXPECT_EQ(failure_of([&] { snap(); }).number, 2);
  EXPECT_FALSE(driver.m_bInitialized);
}

TEST_F(Snap, AFailureOfThePreparationIsNot) {
  bench.set_faults("ftrScanGetImageByVariableDose call 1 fails with 31");
  EXPECT_EQ(failure_of([&] { snap(); }), (Failure{31, "Capture raw image failed."}));
  EXPECT_TRUE(driver.m_bInitialized);
}

TEST_F(Snap, ANoImageErrorGivesAWhiteImage) {
  bench.set_faults("ftrScanGetImageByVariableDose call 2 fails with 4306");
  EXPECT_EQ(snap(), 0UL);
  utilities::ClSimpleBitmap bitmap;
  bitmap.Attach(reinterpret_cast<tagBITMAPINFOHEADER*>(image.release()));
  EXPECT_TRUE(std::all_of(bitmap.Pixel(), bitmap.Pixel() + bitmap.PixelSize(),
                          [](unsigned char level) { return level == 255; }));
}

TEST_F(Snap, AScannerUnpluggedBeforeItShowsAsAnUnreadableSizeAndIsNotClosed) {
  snap();
  bench.unplug(0);
  EXPECT_EQ(failure_of([&] { snap(); }), (Failure{2, "Couldn't read the image size of scanner."}));
  EXPECT_TRUE(driver.m_bInitialized);
}

TEST_F(Snap, ItRecoversOnceAFrameHasShownTheDisconnection) {
  bench.set_faults("ftrScanGetImageByVariableDose call 2 fails with 259");
  failure_of([&] { snap(); });
  EXPECT_FALSE(driver.m_bInitialized);
  EXPECT_EQ(snap(), 0UL);
}

}  // namespace
}  // namespace Osv::lx
