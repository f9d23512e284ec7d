#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <utility>

#include "libraries/scanner_api.h"
#include "simulator/images.h"
#include "support/simulator_fixture.h"

namespace Osv::simulator {
namespace {

/// A small scanner in place of the usual one.
class SmallScanner : public SimulatorFixture {
 protected:
  SmallScanner() {
    bench.run("plug 0 small");
    m_hScanner = ftrScanOpenDeviceOnInterface(0);
  }
  ~SmallScanner() override { ftrScanCloseDevice(m_hScanner); }

  void* m_hScanner = nullptr;
};

TEST_F(SmallScanner, TellsItsSize) {
  __FTRSCAN_IMAGE_SIZE size{};
  EXPECT_EQ(ftrScanGetImageSize(m_hScanner, &size), 1);
  EXPECT_EQ(size.width, kSmallWidth);
  EXPECT_EQ(size.height, kSmallHeight);
}

TEST_F(SmallScanner, SeesTheMiddleOfThePlaten) {
  constexpr int kNoise = 4;  // of two frames
  bench.set_timeline(Timeline::settled_finger());
  const Bytes small = take_dose_frame(m_hScanner);
  bench.plug_in(1, Device());
  void* const scanner = ftrScanOpenDeviceOnInterface(1);
  const Bytes full = take_dose_frame(scanner);
  ftrScanCloseDevice(scanner);
  for (int y = 0; y < kSmallHeight; ++y) {
    const auto* const seen = full.data() + (y + 60) * kRawWidth + 80;
    EXPECT_TRUE(std::equal(seen, seen + kSmallWidth, small.data() + y * kSmallWidth,
                           [](int one, int other) { return std::abs(one - other) <= kNoise; }))
        << y;
  }
}

TEST_F(SmallScanner, HasASmallerImageWithAnEmptyPlatenAsBright) {
  const Bytes frame = take_dose_frame(m_hScanner);
  const Engine engine(payload_of_scanner(bench, 0));
  const Block image = engine.correct(prepare(frame, kSmallWidth, kSmallHeight));
  EXPECT_EQ(image.width(), 374);
  EXPECT_EQ(image.height(), 329);
  EXPECT_GT(darkest(image), 240);
}

TEST_F(SmallScanner, MayHaveAnyEvenSizeThatThePlatenHasRoomFor) {
  Device device;
  for (const auto& [width, height] : {std::pair(642, 480), {640, 482}, {0, 480}, {639, 480}}) {
    device.frame_width = width;
    device.frame_height = height;
    EXPECT_THROW(bench.plug_in(1, device), std::invalid_argument) << width << " x " << height;
  }
  device.frame_width = 2;
  EXPECT_NO_THROW(bench.plug_in(1, device));
}

TEST_F(SmallScanner, WritesNothingBehindItsFrame) {
  Bytes buffer(std::size_t{kSmallWidth} * kSmallHeight + 1, 0xA5);
  EXPECT_EQ(ftrScanGetImageByVariableDose(m_hScanner, 60, buffer.data()), 1);
  EXPECT_EQ(buffer.back(), 0xA5);
}

}  // namespace
}  // namespace Osv::simulator
