#include <gtest/gtest.h>

#include <cstring>

#include "driver/calibration/cal_dynamic_lib.h"
#include "driver/calibration/calibration_handle.h"
#include "driver/device/kr9_api_lib.h"
#include "driver/driver_fixture.h"
#include "foundation/image_functions.h"

namespace Osv::lx {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

using Bytes = std::vector<unsigned char>;

Bytes block_of(const utilities::ClSimpleBitmap& bitmap) {
  const auto* const begin = reinterpret_cast<const unsigned char*>(bitmap.BI());
  return {begin, begin + bitmap.FullSize()};
}

class PlainFrame : public DriverFixture {
 protected:
  PlainFrame() {
    bench.set_timeline(simulator::Timeline::settled_finger());
    prepare(bitmap);
  }

  void fetch() { driver.GetLiveBitmap(driver.channel(), bitmap); }

  utilities::ClSimpleBitmap bitmap;
};

TEST_F(PlainFrame, ItIsOneFetchTurnedAndCorrected) {
  fetch();
  EXPECT_THAT(story(), ElementsAre("ftrScanGetImageByVariableDose",
                                   "7 KR9 scanner. Calling PrepareImage function",
                                   "7 KR9 scanner. CalibrateBitmap.",
                                   "7 KR9 scanner. Calibrate, a image size: 308264", "Calibrate"));
}

TEST_F(PlainFrame, ItIsTakenAtDose60AndCorrectedWithTheCalibratedSize) {
  fetch();
  EXPECT_THAT(journal("ftrScanGetImageByVariableDose"), ElementsAre(HasSubstr("dose 60, buffer")));
  EXPECT_THAT(journal("Calibrate"),
              ElementsAre(HasSubstr("input 308264, output buffer, size 220064")));
}

TEST_F(PlainFrame, TheBlockStaysTheSameFromFrameToFrame) {
  const tagBITMAPINFOHEADER* const block = bitmap.BI();
  const unsigned char* const raw = driver.m_cRawBitmap.Pixel();
  fetch();
  fetch();
  EXPECT_EQ(bitmap.BI(), block);
  EXPECT_EQ(driver.m_cRawBitmap.Pixel(), raw);
}

TEST_F(PlainFrame, TheLockIsFreeAfterAFailure) {
  bench.set_faults("ftrScanGetImageByVariableDose fails with 55");
  failure_of([&] { fetch(); });
  bool free = false;
  std::thread([&] {
    unsigned long count = 0;
    free = driver.AvailableScanners(nullptr, count) == 17;
  }).join();
  EXPECT_TRUE(free);
}

TEST_F(PlainFrame, ABusyScannerIsAskedAgain) {
  bench.set_faults("ftrScanGetImageByVariableDose calls 1 to 19 fails with 121");
  fetch();
  EXPECT_EQ(bench.count("ftrScanGetImageByVariableDose"), 20U);
  EXPECT_EQ(NoWaits::count(), 19U);
}

TEST_F(PlainFrame, AScannerThatStaysBusyIsAFailure) {
  bench.set_faults("ftrScanGetImageByVariableDose fails with 121");
  EXPECT_EQ(failure_of([&] { fetch(); }), (Failure{121, "KR9 scanner. Scanner error: 121"}));
  EXPECT_EQ(bench.count("ftrScanGetImageByVariableDose"), 20U);
}

TEST_F(PlainFrame, Error4306TurnsTheBitmapWhite) {
  fetch();
  bench.set_faults("ftrScanGetImageByVariableDose fails with 4306");
  fetch();
  EXPECT_TRUE(std::all_of(bitmap.Pixel(), bitmap.Pixel() + bitmap.PixelSize(),
                          [](unsigned char level) { return level == 255; }));
  EXPECT_EQ(bench.count("Calibrate"), 1U);
}

TEST_F(PlainFrame, Error0x20000001LeavesTheOldFrame) {
  fetch();
  const Bytes before = block_of(bitmap);
  bench.set_faults("ftrScanGetImageByVariableDose fails with 0x20000001");
  fetch();
  EXPECT_EQ(block_of(bitmap), before);
  EXPECT_EQ(bench.count("Calibrate"), 1U);
}

TEST_F(PlainFrame, AFailedFetchIsLoggedWithItsNumber) {
  bench.set_faults("ftrScanGetImageByVariableDose fails with 4306");
  fetch();
  EXPECT_THAT(log_lines(), ElementsAre("7 KR9 scanner. CaptureFrame: 4306"));
}

TEST_F(PlainFrame, AnUnpluggedScannerIsADisconnection) {
  bench.unplug(0);
  EXPECT_EQ(failure_of([&] { fetch(); }),
            (Failure{2, "KR9 scanner is disconnected from the host, error: 2"}));
  EXPECT_FALSE(driver.m_bInitialized);
}

TEST_F(PlainFrame, AScannerThatWasPluggedInAgainStaysDeadUntilTheNextOpening) {
  bench.unplug(0);
  bench.plug_in_again(0);
  EXPECT_EQ(failure_of([&] { fetch(); }).number, 2);
  utilities::ClSimpleBitmap another;
  EXPECT_EQ(driver.SetActiveChannel(driver.channel(), another), 0UL);
  EXPECT_EQ(driver.m_nActiveScanner, 0U);
}

TEST_F(PlainFrame, AnyOtherErrorIsRefusedWithItsNumber) {
  bench.set_faults("ftrScanGetImageByVariableDose fails with 1450");
  EXPECT_EQ(failure_of([&] { fetch(); }), (Failure{1450, "KR9 scanner. Scanner error: 1450"}));
  EXPECT_TRUE(driver.m_bInitialized);
}

TEST_F(PlainFrame, AnEngineThatFailsIsRefusedWithItsCode) {
  bench.set_faults("Calibrate fails with -6");
  EXPECT_EQ(failure_of([&] { fetch(); }).number, -6);
}

TEST_F(PlainFrame, TheDetectorIsNotTouched) {
  fetch();
  EXPECT_EQ(bench.count("FakeFingerDetectionSetImage"), 0U);
  EXPECT_EQ(driver.m_dLifeness, 0.0);
}

/// The second frame of a fresh scanner at interface 0, fetched past the driver.
Bytes second_frame() {
  constexpr std::size_t kFrameSize = 640UL * 480;
  constexpr int kDose = 60;
  ClKR9APILib api;
  Bytes frame(kFrameSize);
  void* const handle = api.ftrScanOpenDeviceOnInterface(0);
  api.ftrScanGetImageByVariableDose(handle, kDose, frame.data());
  api.ftrScanGetImageByVariableDose(handle, kDose, frame.data());
  api.ftrScanCloseDevice(handle);
  return frame;
}

/// An 8-bit block of a frame, its rows in reverse order and complemented.
utilities::ClSimpleBitmap upright_and_positive(const Bytes& frame, unsigned long width,
                                               unsigned long height) {
  utilities::ClSimpleBitmap bitmap;
  bitmap.Create(width, height, 8, 0);
  for (unsigned long y = 0; y < height; ++y) {
    for (unsigned long x = 0; x < width; ++x) {
      bitmap.Pixel()[y * width + x] =
          static_cast<unsigned char>(255 - frame[(height - 1 - y) * width + x]);
    }
  }
  return bitmap;
}

/// What the engine makes of a block with the calibration data in a scanner's memory.
Bytes corrected(const Bytes& memory, const utilities::ClSimpleBitmap& raw) {
  constexpr std::size_t kLengthPosition = 20;
  constexpr std::size_t kFixed = 25;
  const std::size_t payload = kFixed + memory.at(kLengthPosition);
  std::uint32_t size = 0;
  std::memcpy(&size, &memory.at(payload - sizeof(size)), sizeof(size));
  CXCalDynamicLib library;
  const CXCalibrationHandle engine(library);
  EXPECT_EQ(library.CalibrateSetData(engine.get(), memory.data() + payload, size), 0);
  unsigned long room = raw.FullSize();
  Bytes block(room);
  EXPECT_EQ(library.Calibrate(engine.get(), raw.BI(), img::bmp_size(raw.BI()),
                              reinterpret_cast<tagBITMAPINFOHEADER*>(block.data()), &room),
            0);
  block.resize(room);
  return block;
}

TEST_F(PlainFrame, ItIsWhatTheEngineMakesOfTheTurnedFrameToThePixel) {
  fetch();
  const Bytes delivered = block_of(bitmap);
  driver.UninitializeScanner();
  bench.plug_in(0, {});  // the same unit, its noise from the start
  bench.set_timeline(simulator::Timeline::settled_finger());
  const auto raw = upright_and_positive(second_frame(), 640, 480);
  EXPECT_EQ(delivered, corrected(bench.memory(0), raw));
}

TEST_F(PlainFrame, TheRawBitmapHoldsTheFrameTurnedAndComplemented) {
  fetch();
  const Bytes kept = block_of(driver.m_cRawBitmap);
  driver.UninitializeScanner();
  bench.plug_in(0, {});
  bench.set_timeline(simulator::Timeline::settled_finger());
  EXPECT_EQ(kept, block_of(upright_and_positive(second_frame(), 640, 480)));
}

}  // namespace
}  // namespace Osv::lx
