#include <gmock/gmock.h>

#include <array>
#include <stdexcept>

#include "libraries/calibration_api.h"
#include "libraries/detector_api.h"
#include "libraries/logging_api.h"
#include "libraries/scanner_api.h"
#include "simulator/images.h"
#include "support/simulator_fixture.h"

namespace Osv::simulator {
namespace {

using testing::ElementsAre;

using Journal = SimulatorFixture;

TEST_F(Journal, CallsOfTheScannerStandInItInWords) {
  void* const scanner = ftrScanOpenDeviceOnInterface(0);
  ftrScanSetOptions(scanner, 4, 4);
  ftrScanSetDiodesStatus(scanner, 255, 0);
  take_dose_frame(scanner);
  ftrScanCloseDevice(scanner);
  EXPECT_THAT(journal(), ElementsAre("ftrScanOpenDeviceOnInterface(interface 0) = handle 1",
                                     "ftrScanSetOptions(handle 1, mask 4, flags 4) = 1",
                                     "ftrScanSetDiodesStatus(handle 1, green 255, red 0) = 1",
                                     "ftrScanGetImageByVariableDose(handle 1, dose 60, buffer) = 1",
                                     "ftrScanCloseDevice(handle 1) = 1"));
}

TEST_F(Journal, MemoryReadsStandInItWithOffsetAndSize) {
  void* const scanner = ftrScanOpenDeviceOnInterface(0);
  std::array<unsigned char, 46> buffer = {};
  ftrScanRestoreExtMemory(scanner, buffer.data(), 3, 46);
  EXPECT_THAT(journal("ftrScanRestoreExtMemory"),
              ElementsAre("ftrScanRestoreExtMemory(handle 1, buffer, offset 3, size 46) = 1"));
}

TEST_F(Journal, AFailureStandsInItWithTheLastError) {
  ftrScanSetOptions(nullptr, 4, 4);
  const Call call = bench.calls().at(0);
  EXPECT_EQ(call.function, "ftrScanSetOptions");
  EXPECT_EQ(call.arguments, "handle 0, mask 4, flags 4");
  EXPECT_EQ(call.result, "0");
  EXPECT_EQ(call.last_error, 259U);
}

TEST_F(Journal, OptionTextsStandInItWithTheirBlanks) {
  void* engine = CalibrateCreate();
  CalibrateSetOption(engine, "DynamicFingerMask = true");
  CalibrateSetOption(engine, "SensitiveMode=true");
  EXPECT_EQ(bench.calls().at(1).arguments.substr(bench.calls().at(1).arguments.find('\'')),
            "'DynamicFingerMask = true'");
  EXPECT_EQ(bench.calls().at(2).arguments.substr(bench.calls().at(2).arguments.find('\'')),
            "'SensitiveMode=true'");
  CalibrateDelete(&engine);
}

TEST_F(Journal, SizesOfTheEngineStandInIt) {
  void* engine = CalibrateCreate();
  const Bytes payload = payload_of_scanner(bench, 0);
  CalibrateSetData(engine, payload.data(), payload.size());
  Block input(kRawWidth, kRawHeight);
  unsigned long size = 0;
  Calibrate(engine, input.header(), input.size(), nullptr, &size);
  EXPECT_THAT(journal("Calibrate").at(0),
              testing::EndsWith("input 308264, output null, size 0) = -21, size 220064"));
  CalibrateDelete(&engine);
}

TEST_F(Journal, ImagesOfTheDetectorStandInItWithTheirKinds) {
  FakeFingerDetectionInitialize(nullptr);
  void* detector = nullptr;
  FakeFingerDetectionCreateHandle(&detector);
  const Block image(10, 10);
  for (const int kind : {1, 2, 0}) {
    FakeFingerDetectionSetImage(detector, kind, &image.head(), image.size());
  }
  const std::vector<std::string> words = journal("FakeFingerDetectionSetImage");
  EXPECT_THAT(words.at(0), testing::HasSubstr("kind 1 backlight, size 1184) = 0"));
  EXPECT_THAT(words.at(1), testing::HasSubstr("kind 2 dark"));
  EXPECT_THAT(words.at(2), testing::HasSubstr("kind 0 dose"));
  FakeFingerDetectionDestroyHandle(&detector);
  FakeFingerDetectionUninitialize();
}

TEST_F(Journal, LogLinesStandInItWithLevelAndText) {
  OsvLFLog(7, "image width: %d, text: %s", 640, "x");
  OsvLFFlush();
  EXPECT_THAT(journal(),
              ElementsAre("OsvLFLog(level 7, 'image width: 640, text: x') = ", "OsvLFFlush() = "));
}

TEST_F(Journal, WithoutRecordingCallsAreOnlyCounted) {
  bench.record(false);
  ftrScanGetLastError();
  ftrScanGetLastError();
  EXPECT_TRUE(bench.calls().empty());
  EXPECT_EQ(bench.count("ftrScanGetLastError"), 2U);
}

TEST_F(Journal, AClearedOneIsEmptyAndCountsAnew) {
  ftrScanGetLastError();
  bench.clear_journal();
  EXPECT_TRUE(bench.calls().empty());
  EXPECT_EQ(bench.count("ftrScanGetLastError"), 0U);
}

TEST_F(Journal, AFunctionThatNoLibraryHasCanNotBeCounted) {
  EXPECT_THROW((void)bench.count("ftrScanGetImage3"), std::invalid_argument);
}

}  // namespace
}  // namespace Osv::simulator
