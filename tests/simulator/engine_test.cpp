#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "libraries/calibration_api.h"
#include "libraries/scanner_api.h"
#include "payload/payload.h"
#include "simulator/images.h"
#include "support/simulator_fixture.h"

namespace Osv::simulator {
namespace {

constexpr long kBadHandle = -2;
constexpr long kNoData = -4;
constexpr long kBadData = -5;
constexpr long kBadBitmap = -6;
constexpr long kWrongSize = -7;
constexpr long kBadValue = -8;
constexpr long kSmallBuffer = -21;
constexpr long kNoOption = -37;
constexpr unsigned long kFinalBlock = 40 + 1024 + 500 * 438;
constexpr double kAlike = 0.95;

class CalibrationStandIn : public SimulatorFixture {
 protected:
  CalibrationStandIn()
      : m_hScanner(ftrScanOpenDeviceOnInterface(0)), m_cEngine(payload_of_scanner(bench, 0)) {}
  ~CalibrationStandIn() override { ftrScanCloseDevice(m_hScanner); }

  Block frame() { return prepare(take_dose_frame(m_hScanner)); }
  Block corrected() { return m_cEngine.correct(frame()); }

  /// The settled picture with the geometry undone.
  GrayImage settled(const GrayImage& picture) {
    bench.set_finger(picture);
    bench.set_timeline(Timeline::settled_finger());
    const Place place = bench.place(picture.width, picture.height);
    return cut_out(corrected(), place, picture.width, picture.height);
  }

  void* m_hScanner;
  Engine m_cEngine;
};

/// The picture with each pixel taken from where `source` says.
template <class Source>
GrayImage remap(const GrayImage& picture, Source source) {
  GrayImage result = picture;
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      const auto [from_x, from_y] = source(x, y);
      const int inside_x = std::clamp(from_x, 0, picture.width - 1);
      const int inside_y = std::clamp(from_y, 0, picture.height - 1);
      result.pixels[static_cast<std::size_t>(y * picture.width + x)] =
          picture.pixels[static_cast<std::size_t>(inside_y * picture.width + inside_x)];
    }
  }
  return result;
}

using At = std::pair<int, int>;

TEST_F(CalibrationStandIn, TheSettledFingerIsThePictureAndNoneOfItsDistortions) {
  const GrayImage picture = bench.finger();
  const GrayImage found = settled(picture);
  const int right = picture.width - 1;
  const int bottom = picture.height - 1;
  GrayImage inverted = picture;
  for (unsigned char& level : inverted.pixels) {
    level = static_cast<unsigned char>(~level);
  }
  EXPECT_GT(correlation(found, picture), kAlike);
  EXPECT_LT(correlation(found, remap(picture, [&](int x, int y) { return At(x, bottom - y); })),
            kAlike);
  EXPECT_LT(correlation(found, remap(picture, [&](int x, int y) { return At(right - x, y); })),
            kAlike);
  EXPECT_LT(correlation(found, inverted), kAlike);
  EXPECT_LT(correlation(found, remap(picture, [](int x, int y) { return At(x + 3, y); })), kAlike);
  EXPECT_LT(correlation(found, remap(picture, [](int x, int y) { return At(x, y - 3); })), kAlike);
}

TEST_F(CalibrationStandIn, APictureLargerThanTheImageLiesInItsMiddle) {
  const GrayImage small = bench.finger();
  GrayImage large{600, 500, Bytes(std::size_t{600} * 500, 255)};
  for (int y = 0; y < small.height; ++y) {
    std::copy_n(small.pixels.begin() + y * small.width, small.width,
                large.pixels.begin() + (y + 50) * large.width + 140);
  }
  bench.set_finger(large);
  bench.set_timeline(Timeline::settled_finger());
  const Place place = bench.place(large.width, large.height);
  const GrayImage found =
      cut_out(corrected(), {place.x + 140, place.y + 50}, small.width, small.height);
  EXPECT_GT(correlation(found, small), kAlike);
}

TEST_F(CalibrationStandIn, TheEmptyPlatenComesOutBrighterThan240Everywhere) {
  for (unsigned int seed = 1; seed < 6; ++seed) {
    Device device;
    device.seed = seed;
    bench.plug_in(seed, device);
    void* const scanner = ftrScanOpenDeviceOnInterface(static_cast<int>(seed));
    const Engine engine(payload_of_scanner(bench, seed));
    const Block image = engine.correct(prepare(take_dose_frame(scanner)));
    EXPECT_GT(darkest(image), 240);
    EXPECT_NEAR(mean(image), 250, 1.5);
    ftrScanCloseDevice(scanner);
  }
}

TEST_F(CalibrationStandIn, TheRowsMeanFallsBelow240WithTheFirstTouch) {
  bench.set_timeline({1, 20, 1, 0, false});
  EXPECT_GE(mean_of_row(corrected(), kFinalHeight / 2), 240);
  EXPECT_LT(mean_of_row(corrected(), kFinalHeight / 2), 240);
}

TEST_F(CalibrationStandIn, AFingerThatPressesGetsDarkerUntilItIsSettled) {
  bench.set_timeline({0, 5, 1, 0, false});
  double last = 255;
  for (int i = 0; i < 6; ++i) {
    const double level = mean(corrected());
    EXPECT_LT(level, last);
    last = level;
  }
}

TEST_F(CalibrationStandIn, TheBlockIsWhollyWrittenAndNotAByteMore) {
  Block input = frame();
  Block output(kFinalBlock + 100);
  std::fill(output.bytes().begin(), output.bytes().end(), 0xA5);
  unsigned long size = output.size();
  EXPECT_EQ(Calibrate(m_cEngine.handle(), input.header(), input.size(), output.header(), &size), 0);
  EXPECT_EQ(size, kFinalBlock);
  EXPECT_TRUE(std::all_of(output.bytes().begin() + kFinalBlock, output.bytes().end(),
                          [](unsigned char byte) { return byte == 0xA5; }));
  EXPECT_TRUE(std::all_of(output.row(0) + kFinalWidth, output.row(0) + 500,
                          [](unsigned char byte) { return byte == 0; }));
}

TEST_F(CalibrationStandIn, TheHeaderTellsAGrayImageOf500DotsPerInch) {
  const Block image = corrected();
  const tagBITMAPINFOHEADER& head = image.head();
  EXPECT_EQ(head.biSize, 40U);
  EXPECT_EQ(head.biWidth, kFinalWidth);
  EXPECT_EQ(head.biHeight, kFinalHeight);
  EXPECT_EQ(head.biPlanes, 1);
  EXPECT_EQ(head.biBitCount, 8);
  EXPECT_EQ(head.biSizeImage, 500U * 438U);
  EXPECT_EQ(head.biXPelsPerMeter, kPixelsPerMetre);
  EXPECT_EQ(head.biYPelsPerMeter, kPixelsPerMetre);
}

TEST_F(CalibrationStandIn, ThePaletteIsTheIdentityRamp) {
  Block image = corrected();
  for (std::size_t i = 0; i < 256; ++i) {
    const auto level = static_cast<unsigned char>(i);
    const std::array<unsigned char, 4> entry = {level, level, level, 0};
    EXPECT_TRUE(std::equal(entry.begin(), entry.end(),
                           image.bytes().begin() + static_cast<std::ptrdiff_t>(40 + 4 * i)));
  }
}

TEST_F(CalibrationStandIn, ANullOutputAsksForTheSize) {
  Block input = frame();
  unsigned long size = 0;
  EXPECT_EQ(Calibrate(m_cEngine.handle(), input.header(), input.size(), nullptr, &size),
            kSmallBuffer);
  EXPECT_EQ(size, kFinalBlock);
  EXPECT_LT(size, input.size());
}

TEST_F(CalibrationStandIn, AnOutputThatIsAByteTooSmallIsNotTouched) {
  Block input = frame();
  Block output(kFinalBlock - 1);
  unsigned long size = output.size();
  EXPECT_EQ(Calibrate(m_cEngine.handle(), input.header(), input.size(), output.header(), &size),
            kSmallBuffer);
  EXPECT_EQ(size, kFinalBlock);
  EXPECT_EQ(output.bytes(), Bytes(kFinalBlock - 1));
}

TEST_F(CalibrationStandIn, AnInputOfAnotherSizeIsRefused) {
  Block input(kRawWidth, kRawHeight - 1);
  unsigned long size = 0;
  EXPECT_EQ(Calibrate(m_cEngine.handle(), input.header(), input.size(), nullptr, &size),
            kWrongSize);
}

TEST_F(CalibrationStandIn, AnInputThatIsCutOffIsRefused) {
  Block input = frame();
  unsigned long size = 0;
  EXPECT_EQ(Calibrate(m_cEngine.handle(), input.header(), input.size() - 1, nullptr, &size),
            kBadBitmap);
}

TEST_F(CalibrationStandIn, AnInputOfAnotherDepthIsRefused) {
  Block input = frame();
  input.header()->biBitCount = 24;
  unsigned long size = 0;
  EXPECT_EQ(Calibrate(m_cEngine.handle(), input.header(), input.size(), nullptr, &size),
            kBadBitmap);
}

TEST_F(CalibrationStandIn, AnUnpreparedFrameGoesThroughToo) {
  const Bytes raw = take_dose_frame(m_hScanner);
  Block input(kRawWidth, kRawHeight);
  std::copy(raw.begin(), raw.end(), input.row(kRawHeight - 1));
  EXPECT_EQ(m_cEngine.correct(input).size(), kFinalBlock);
}

TEST_F(CalibrationStandIn, AFrameMadeElsewhereIsCorrectedWithItsPayload) {
  Payload payload;
  payload.raw_width = 300;
  payload.raw_height = 200;
  payload.final_width = 202;
  payload.final_height = 150;
  payload.pixels_per_metre = kPixelsPerMetre;
  payload.geometry = {150, 100, 140, 90, 0, 0, 0};
  Block input(300, 200);
  // Stripes of 10 and 20 pixels as the finger, on a platen whose columns differ wildly.
  for (int y = 0; y < 200; ++y) {
    for (int x = 0; x < 300; ++x) {
      const int white = 160 + x % 7 * 12 + y % 5 * 3;
      const int dark = 20 + x % 3 * 9;
      payload.white.push_back(static_cast<unsigned char>(white));
      payload.dark.push_back(static_cast<unsigned char>(dark));
      input.row(y)[x] = static_cast<unsigned char>(y < 100 ? white : dark);
    }
  }
  const Engine engine(build_payload(payload));
  const Block image = engine.correct(input);
  EXPECT_EQ(image.width(), 202);
  EXPECT_EQ(image.height(), 150);
  EXPECT_NEAR(mean_of_row(image, 10), 250, 1);
  EXPECT_NEAR(mean_of_row(image, 70), 250, 1);
  EXPECT_NEAR(mean_of_row(image, 80), 0, 1);
  EXPECT_NEAR(mean_of_row(image, 140), 0, 1);
}

TEST_F(CalibrationStandIn, TheGeometryOfThePayloadIsUndone) {
  Payload payload;
  payload.raw_width = 300;
  payload.raw_height = 200;
  payload.final_width = 201;
  payload.final_height = 151;
  payload.pixels_per_metre = kPixelsPerMetre;
  payload.geometry = {150, 100, 140, 90, 0.05F, 0.03F, 0.01F};
  payload.white.assign(300 * 200, 250);
  payload.dark.assign(300 * 200, 0);
  Block input(300, 200);
  std::fill_n(input.row(199), 300 * 200, static_cast<unsigned char>(250));
  const Point there = to_raw(payload, 170, 120);
  const int x = static_cast<int>(std::lround(there.x));
  const int y = static_cast<int>(std::lround(there.y));
  for (int dy = -2; dy <= 2; ++dy) {
    std::fill_n(input.row(y + dy) + x - 2, 5, static_cast<unsigned char>(0));
  }
  const Engine engine(build_payload(payload));
  const Block image = engine.correct(input);
  EXPECT_LT(image.row(120)[170], 10);
  EXPECT_GT(image.row(120)[160], 240);
  EXPECT_GT(image.row(130)[170], 240);
}

TEST_F(CalibrationStandIn, TheWayToTheFinalImageIsTheInverseOfTheWayToTheFrame) {
  Payload payload;
  ASSERT_TRUE(parse_payload(payload_of_scanner(bench, 0).data(),
                            payload_of_scanner(bench, 0).size(), payload));
  for (const Point point : {Point{0, 0}, Point{497, 437}, Point{100.5, 300.25}}) {
    const Point there = to_raw(payload, point.x, point.y);
    const Point back = to_final(payload, there.x, there.y);
    EXPECT_NEAR(back.x, point.x, 0.01);
    EXPECT_NEAR(back.y, point.y, 0.01);
  }
}

TEST_F(CalibrationStandIn, TheEngineCopiesItsPayload) {
  Bytes payload = payload_of_scanner(bench, 0);
  const Engine engine(payload);
  std::fill(payload.begin(), payload.end(), 0);
  EXPECT_GT(darkest(engine.correct(frame())), 240);
}

TEST_F(CalibrationStandIn, APayloadWithAByteChangedIsRefused) {
  Bytes payload = payload_of_scanner(bench, 0);
  payload.back() ^= 1;
  EXPECT_EQ(CalibrateSetData(m_cEngine.handle(), payload.data(), payload.size()), kBadData);
}

TEST_F(CalibrationStandIn, APayloadCutOffAnywhereIsRefused) {
  const Bytes payload = payload_of_scanner(bench, 0);
  for (const std::size_t size :
       {std::size_t{0}, std::size_t{8}, std::size_t{63}, std::size_t{64}, payload.size() - 1}) {
    EXPECT_EQ(CalibrateSetData(m_cEngine.handle(), payload.data(), size), kBadData);
  }
}

TEST_F(CalibrationStandIn, WithoutDataNothingIsCorrected) {
  void* engine = CalibrateCreate();
  Block input = frame();
  unsigned long size = 0;
  EXPECT_EQ(Calibrate(engine, input.header(), input.size(), nullptr, &size), kNoData);
  CalibrateDelete(&engine);
}

TEST_F(CalibrationStandIn, ADeletedHandleIsNullAndItsCopyIsRefused) {
  void* engine = CalibrateCreate();
  void* const copy = engine;
  CalibrateDelete(&engine);
  EXPECT_EQ(engine, nullptr);
  EXPECT_EQ(CalibrateSetOption(copy, "SensitiveMode=true"), kBadHandle);
  EXPECT_EQ(CalibrateSetOption(nullptr, "SensitiveMode=true"), kBadHandle);
}

TEST_F(CalibrationStandIn, SensitiveModeBelongsToOneInstance) {
  const Engine other(payload_of_scanner(bench, 0));
  EXPECT_EQ(CalibrateSetOption(m_cEngine.handle(), "SensitiveMode=true"), 0);
  std::array<char, 10> value = {};
  unsigned long length = value.size();
  EXPECT_EQ(CalibrateGetOption(m_cEngine.handle(), "SensitiveMode", value.data(), &length), 0);
  EXPECT_STREQ(value.data(), "Enabled");
  length = value.size();
  EXPECT_EQ(CalibrateGetOption(other.handle(), "SensitiveMode", value.data(), &length), 0);
  EXPECT_STREQ(value.data(), "Disabled");
}

TEST_F(CalibrationStandIn, SensitiveModeRaisesTheContrast) {
  bench.set_timeline({0, 3, 0, 0, false});
  const double before = mean(corrected());
  CalibrateSetOption(m_cEngine.handle(), "SensitiveMode=true");
  bench.set_timeline({0, 3, 0, 0, false});
  EXPECT_LT(mean(corrected()), before - 2);
  CalibrateSetOption(m_cEngine.handle(), "SensitiveMode=false");
  bench.set_timeline({0, 3, 0, 0, false});
  EXPECT_NEAR(mean(corrected()), before, 0.1);
}

TEST_F(CalibrationStandIn, TheDynamicFingerMaskIsOnAtFirstAndChangesAFingerOnly) {
  const Block plain = frame();
  bench.set_timeline(Timeline::settled_finger());
  const Block finger = frame();
  Bytes with_mask = m_cEngine.correct(finger).bytes();
  const Bytes empty_with_mask = m_cEngine.correct(plain).bytes();
  EXPECT_EQ(CalibrateSetOption(m_cEngine.handle(), "DynamicFingerMask = false"), 0);
  EXPECT_NE(m_cEngine.correct(finger).bytes(), with_mask);
  EXPECT_EQ(m_cEngine.correct(plain).bytes(), empty_with_mask);
  EXPECT_EQ(CalibrateSetOption(m_cEngine.handle(), "DynamicFingerMask=true"), 0);
  EXPECT_EQ(m_cEngine.correct(finger).bytes(), with_mask);
}

TEST_F(CalibrationStandIn, AnOptionThatItDoesNotKnowIsNotAvailable) {
  unsigned long length = 10;
  std::array<char, 10> value = {};
  EXPECT_EQ(CalibrateSetOption(m_cEngine.handle(), "Sensitivemode=true"), kNoOption);
  EXPECT_EQ(CalibrateGetOption(m_cEngine.handle(), "Mask", value.data(), &length), kNoOption);
  EXPECT_EQ(CalibrateSetOption(m_cEngine.handle(), "SensitiveMode=maybe"), kBadValue);
  EXPECT_EQ(CalibrateSetOption(m_cEngine.handle(), "SensitiveMode"), kBadValue);
}

TEST_F(CalibrationStandIn, AValueNeedsRoomForItsTerminatingZero) {
  std::array<char, 10> value = {};
  unsigned long length = 8;
  EXPECT_EQ(CalibrateGetOption(m_cEngine.handle(), "SensitiveMode", value.data(), &length),
            kSmallBuffer);
  EXPECT_EQ(length, 9U);
  EXPECT_EQ(CalibrateGetOption(m_cEngine.handle(), "SensitiveMode", value.data(), &length), 0);
}

TEST_F(CalibrationStandIn, EachOfItsCodesHasATextAndNoOtherNumberHasOne) {
  for (const long code : {kBadHandle, -3L, kNoData, kBadData, kBadBitmap, kWrongSize, kBadValue,
                          kSmallBuffer, kNoOption}) {
    EXPECT_NE(CalibrateGetErrorDescription(code), nullptr);
  }
  EXPECT_EQ(CalibrateGetErrorDescription(0), nullptr);
  EXPECT_EQ(CalibrateGetErrorDescription(-999), nullptr);
}

TEST_F(CalibrationStandIn, ACleanPlatenHasNoContaminationAndACoveredOneHas) {
  Block clean = frame();
  double percent = -1;
  EXPECT_EQ(ContaminationDetection(m_cEngine.handle(), clean.header(), clean.size(), &percent), 0);
  EXPECT_EQ(percent, 0);
  bench.set_timeline(Timeline::settled_finger());
  Block covered = frame();
  ContaminationDetection(m_cEngine.handle(), covered.header(), covered.size(), &percent);
  EXPECT_GT(percent, 10);
  EXPECT_LT(percent, 60);
}

TEST_F(CalibrationStandIn, ABlackPlatenIsWhollyContaminated) {
  Block black(kRawWidth, kRawHeight);
  double percent = -1;
  EXPECT_EQ(ContaminationDetection(m_cEngine.handle(), black.header(), black.size(), &percent), 0);
  EXPECT_EQ(percent, 100);
}

}  // namespace
}  // namespace Osv::simulator
