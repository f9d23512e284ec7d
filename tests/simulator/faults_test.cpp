#include <array>
#include <stdexcept>
#include <string>
#include <thread>

#include "libraries/calibration_api.h"
#include "libraries/detector_api.h"
#include "libraries/scanner_api.h"
#include "simulator/images.h"
#include "support/simulator_fixture.h"

namespace Osv::simulator {
namespace {

class Faults : public SimulatorFixture {
 protected:
  Faults() : m_hScanner(ftrScanOpenDeviceOnInterface(0)) {}

  int take() { return ftrScanGetImageByVariableDose(m_hScanner, 60, m_vFrame.data()); }

  /// What the plan's refusal says.
  std::string refusal(const std::string& words) {
    try {
      bench.set_faults(words);
    } catch (const std::invalid_argument& error) {
      return error.what();
    }
    return "none";
  }

  void* m_hScanner;
  Bytes m_vFrame = Bytes(std::size_t{kRawWidth} * kRawHeight);
};

/// The refusal of a plan because of a word.
std::string at(const std::string& word) { return "fault not understood at '" + word + "'"; }

/// A started detector with one handle.
class DetectorFaults : public Faults {
 protected:
  DetectorFaults() {
    FakeFingerDetectionInitialize(nullptr);
    FakeFingerDetectionCreateHandle(&m_hDetector);
  }
  ~DetectorFaults() override {
    FakeFingerDetectionDestroyHandle(&m_hDetector);
    FakeFingerDetectionUninitialize();
  }

  void* m_hDetector = nullptr;
  std::array<char, 20> m_aText = {};
  unsigned long m_nLength = 20;
};

TEST_F(Faults, OneCallFails) {
  bench.set_faults("ftrScanGetImageByVariableDose call 3 fails with 121");
  EXPECT_EQ(take(), 1);
  EXPECT_EQ(take(), 1);
  EXPECT_EQ(take(), 0);
  EXPECT_EQ(ftrScanGetLastError(), 121U);
  EXPECT_EQ(take(), 1);
  EXPECT_EQ(bench.frame_count(), 3U);
}

TEST_F(Faults, AFewCallsFail) {
  bench.set_faults("ftrScanGetImageByVariableDose calls 1 to 2 fails with 121");
  EXPECT_EQ(take(), 0);
  EXPECT_EQ(take(), 0);
  EXPECT_EQ(take(), 1);
}

TEST_F(Faults, AllCallsFromOneOnFail) {
  bench.set_faults("ftrScanGetImageByVariableDose from call 2 on fails with 31");
  EXPECT_EQ(take(), 1);
  EXPECT_EQ(take(), 0);
  EXPECT_EQ(take(), 0);
}

TEST_F(Faults, AllCallsFailWithLastError0) {
  ftrScanSetLastError(5);
  bench.set_faults("ftrScanGetImageByVariableDose always fails with 0");
  EXPECT_EQ(take(), 0);
  EXPECT_EQ(ftrScanGetLastError(), 0U);
}

TEST_F(Faults, ErrorsCanBeHexadecimal) {
  bench.set_faults("ftrScanSetOptions fails with 0x20000004");
  EXPECT_EQ(ftrScanSetOptions(m_hScanner, 4, 4), 0);
  EXPECT_EQ(ftrScanGetLastError(), 0x20000004U);
}

TEST_F(Faults, AnAnswerIsGivenAfterTheWorkIsDone) {
  bench.set_faults("ftrScanSetOptions answers 7 with error 5");
  EXPECT_EQ(ftrScanSetOptions(m_hScanner, 4, 4), 7);
  EXPECT_EQ(ftrScanGetLastError(), 5U);
  EXPECT_EQ(bench.state(0).options, 4U);
}

TEST_F(Faults, SettingThePlanCountsAnew) {
  take();
  take();
  bench.set_faults("ftrScanGetImageByVariableDose call 1 fails with 31");
  EXPECT_EQ(take(), 0);
}

TEST_F(Faults, SeveralFaultsStandInOnePlan) {
  bench.set_faults(
      "ftrScanGetImageByVariableDose call 1 fails with 121;\n"
      "ftrScanGetImageByVariableDose call 2 fails with 31\n"
      "\n"
      "  ftrScanSetOptions fails with 87");
  EXPECT_EQ(take(), 0);
  EXPECT_EQ(ftrScanGetLastError(), 121U);
  EXPECT_EQ(take(), 0);
  EXPECT_EQ(ftrScanGetLastError(), 31U);
  EXPECT_EQ(ftrScanSetOptions(m_hScanner, 4, 4), 0);
}

TEST_F(Faults, AClearedPlanDoesNothing) {
  bench.set_faults("ftrScanGetImageByVariableDose fails with 31");
  bench.clear_faults();
  EXPECT_EQ(take(), 1);
}

TEST_F(Faults, AHandleIsNull) {
  bench.set_faults("ftrScanOpenDeviceOnInterface call 1 gives a null handle");
  EXPECT_EQ(ftrScanOpenDeviceOnInterface(0), nullptr);
  EXPECT_NE(ftrScanOpenDeviceOnInterface(0), nullptr);
  bench.set_faults("CalibrateCreate gives a null handle");
  EXPECT_EQ(CalibrateCreate(), nullptr);
}

TEST_F(Faults, OpeningFailsWithItsError) {
  bench.set_faults("ftrScanOpenDeviceOnInterface fails with 5");
  EXPECT_EQ(ftrScanOpenDeviceOnInterface(0), nullptr);
  EXPECT_EQ(ftrScanGetLastError(), 5U);
}

TEST_F(Faults, SizesAreAbsurd) {
  bench.set_faults("ftrScanGetImageSize gives -1 x 480; ftrScanGetExtMemorySize gives -5");
  __FTRSCAN_IMAGE_SIZE size{};
  EXPECT_EQ(ftrScanGetImageSize(m_hScanner, &size), 1);
  EXPECT_EQ(size.width, -1);
  EXPECT_EQ(size.height, 480);
  std::int32_t memory = 0;
  EXPECT_EQ(ftrScanGetExtMemorySize(m_hScanner, &memory), 1);
  EXPECT_EQ(memory, -5);
}

TEST_F(Faults, TheEngineAnswersWhatThePlanSays) {
  const Engine engine(payload_of_scanner(bench, 0));
  Block input(kRawWidth, kRawHeight);
  unsigned long size = 0;
  bench.set_faults(
      "Calibrate call 2 fails with -5; Calibrate call 3 answers 0 with size 0;"
      "Calibrate call 4 answers 0 with size -1");
  EXPECT_EQ(Calibrate(engine.handle(), input.header(), input.size(), nullptr, &size), -21);
  EXPECT_EQ(Calibrate(engine.handle(), input.header(), input.size(), nullptr, &size), -5);
  EXPECT_EQ(Calibrate(engine.handle(), input.header(), input.size(), nullptr, &size), 0);
  EXPECT_EQ(size, 0U);
  EXPECT_EQ(Calibrate(engine.handle(), input.header(), input.size(), nullptr, &size), 0);
  EXPECT_EQ(size, ~0UL);
}

TEST_F(Faults, AnOptionHasAnotherValue) {
  const Engine engine(payload_of_scanner(bench, 0));
  std::array<char, 10> value = {};
  unsigned long length = 10;
  bench.set_faults("CalibrateGetOption answers text 'EnabledX'");
  EXPECT_EQ(CalibrateGetOption(engine.handle(), "SensitiveMode", value.data(), &length), 0);
  EXPECT_STREQ(value.data(), "EnabledX");
}

TEST_F(Faults, ACodeHasNoText) {
  bench.set_faults(
      "CalibrateGetErrorDescription gives no text;"
      "FakeFingerDetectionGetErrorDescriptionA gives no text");
  EXPECT_EQ(CalibrateGetErrorDescription(-21), nullptr);
  EXPECT_EQ(FakeFingerDetectionGetErrorDescriptionA(-21), nullptr);
}

TEST_F(Faults, AnOptionIsGivenWithoutAText) {
  const Engine engine(payload_of_scanner(bench, 0));
  std::array<char, 10> value = {'x'};
  unsigned long length = 10;
  bench.set_faults("CalibrateGetOption gives no text");
  EXPECT_EQ(CalibrateGetOption(engine.handle(), "SensitiveMode", value.data(), &length), 0);
  EXPECT_STREQ(value.data(), "x");
}

TEST_F(Faults, ASerialNumberHasEightBytesOfAText) {
  std::array<char, 9> serial = {};
  bench.set_faults(
      "ftrScanGetSerialNumber call 1 answers text '123456789';"
      "ftrScanGetSerialNumber call 2 gives no text;"
      "ftrScanGetSerialNumber call 3 answers text '1'");
  EXPECT_EQ(ftrScanGetSerialNumber(m_hScanner, serial.data()), 1);
  EXPECT_STREQ(serial.data(), "12345678");
  EXPECT_EQ(ftrScanGetSerialNumber(m_hScanner, serial.data()), 1);
  EXPECT_STREQ(serial.data(), "12345678");
  EXPECT_EQ(ftrScanGetSerialNumber(m_hScanner, serial.data()), 1);
  EXPECT_EQ(serial, (std::array<char, 9>{'1'}));
}

TEST_F(Faults, AVersionHasThePartsOfThePlanOrNone) {
  ftrScanVersionRecord version{};
  version.size = sizeof(version);
  bench.set_faults("ftrScanGetVersion call 1 gives no text; ftrScanGetVersion call 2 gives 65534");
  EXPECT_EQ(ftrScanGetVersion(m_hScanner, &version), 1);
  EXPECT_EQ(version.second, Version());
  EXPECT_EQ(ftrScanGetVersion(m_hScanner, &version), 1);
  EXPECT_EQ(version.second, (Version{65534, 65534, 65534, 65534}));
  EXPECT_EQ(version.third, version.second);
}

TEST_F(Faults, ContaminationIsWhatThePlanSays) {
  const Engine engine(payload_of_scanner(bench, 0));
  Block input(kRawWidth, kRawHeight);
  double percent = 0;
  bench.set_faults("ContaminationDetection gives 42.5");
  EXPECT_EQ(ContaminationDetection(engine.handle(), input.header(), input.size(), &percent), 0);
  EXPECT_EQ(percent, 42.5);
}

TEST_F(Faults, ACallBlocksUntilTold) {
  bench.set_faults("ftrScanGetImageByVariableDose call 2 blocks until told");
  EXPECT_EQ(take(), 1);
  int status = -1;
  std::thread thread([&] { status = take(); });
  bench.wait_until_blocked("ftrScanGetImageByVariableDose");
  EXPECT_EQ(bench.frame_count(), 1U);
  bench.release();
  thread.join();
  EXPECT_EQ(status, 1);
  EXPECT_EQ(bench.frame_count(), 2U);
}

TEST_F(Faults, ABlockedCallFailsWhenItsScannerWasUnpluggedMeanwhile) {
  bench.set_faults("ftrScanGetImageByVariableDose blocks until told");
  int status = -1;
  std::thread thread([&] { status = take(); });
  bench.wait_until_blocked("ftrScanGetImageByVariableDose");
  bench.unplug(0);
  bench.release();
  thread.join();
  EXPECT_EQ(status, 0);
  EXPECT_EQ(ftrScanGetLastError(), 259U);
}

TEST_F(Faults, ANewPlanReleasesBlockedCalls) {
  bench.set_faults("ftrScanGetLastError blocks until told");
  std::thread thread([] { ftrScanGetLastError(); });
  bench.wait_until_blocked("ftrScanGetLastError");
  bench.clear_faults();
  thread.join();
  EXPECT_EQ(bench.count("ftrScanGetLastError"), 1U);
}

TEST_F(DetectorFaults, APropertyAsksForNoLength) {
  bench.set_faults("FakeFingerDetectionGetPropertyA answers -21 with length 0");
  EXPECT_EQ(FakeFingerDetectionGetPropertyA(m_hDetector, "Version", nullptr, &m_nLength), -21);
  EXPECT_EQ(m_nLength, 0U);
}

TEST_F(DetectorFaults, APropertyIsGivenWithoutAText) {
  m_aText.fill('x');
  bench.set_faults("FakeFingerDetectionGetPropertyA gives no text");
  EXPECT_EQ(FakeFingerDetectionGetPropertyA(m_hDetector, "Version", m_aText.data(), &m_nLength), 0);
  EXPECT_EQ(m_aText.front(), 'x');
}

TEST_F(DetectorFaults, OnePropertyHasAnotherValue) {
  bench.set_faults("FakeFingerDetectionGetPropertyA of 'dQueryFRR' answers text '0.25; x'");
  EXPECT_EQ(
      FakeFingerDetectionGetPropertyA(m_hDetector, "nSecurityLevel", m_aText.data(), &m_nLength),
      0);
  EXPECT_STREQ(m_aText.data(), "1");
  m_nLength = m_aText.size();
  EXPECT_EQ(FakeFingerDetectionGetPropertyA(m_hDetector, "dQueryFRR", m_aText.data(), &m_nLength),
            0);
  EXPECT_STREQ(m_aText.data(), "0.25; x");
}

TEST_F(DetectorFaults, TheScoreIsDoubtfulOrGiven) {
  bench.set_faults(
      "FakeFingerDetectionEvaluateLiveliness gives 48;"
      "FakeFingerDetectionEvaluateLiveliness answers -768");
  double score = 0;
  EXPECT_EQ(FakeFingerDetectionEvaluateLiveliness(m_hDetector, &score), -768);
  EXPECT_EQ(score, 48);
}

TEST_F(DetectorFaults, ItFailsToStart) {
  bench.set_faults("FakeFingerDetectionInitialize fails with -1");
  EXPECT_EQ(FakeFingerDetectionInitialize(nullptr), -1);
}

TEST_F(Faults, AFaultThatIsNotUnderstoodIsRefusedWithTheWord) {
  EXPECT_EQ(refusal("ftrScanGetImage3 fails with 1"), at("ftrScanGetImage3"));
  EXPECT_EQ(refusal("Calibrate fails on 1"), at("on"));
  EXPECT_EQ(refusal("Calibrate fails with x"), at("x"));
  EXPECT_EQ(refusal("Calibrate fails with 1 twice"), at("twice"));
  EXPECT_EQ(refusal("Calibrate call 0 fails with 1"), at("0"));
  EXPECT_EQ(refusal("Calibrate from call 2 fails with 1"), at("fails"));
  EXPECT_EQ(refusal("Calibrate sometimes fails with 1"), at("sometimes"));
  EXPECT_EQ(refusal("Calibrate blocks until"), at("end of fault"));
  EXPECT_EQ(refusal("Calibrate answers 1 with length 5"), at("length"));
  EXPECT_EQ(refusal("CalibrateGetOption answers text Enabled"), at("Enabled"));
  EXPECT_EQ(refusal("CalibrateGetOption answers text 'Enabled"), at("'Enabled"));
}

TEST_F(Faults, AZeroByteBehindANumberBelongsToIt) {
  EXPECT_NE(refusal(std::string("Calibrate fails with 1") + '\0'), "none");
}

TEST_F(Faults, AnEffectThatAFunctionCanNotHaveIsRefused) {
  EXPECT_NE(refusal("ftrScanSetOptions gives a null handle"), "none");
  EXPECT_NE(refusal("ftrScanSetOptions gives no text"), "none");
  EXPECT_NE(refusal("Calibrate answers 0 with error 5"), "none");
  EXPECT_NE(refusal("ftrScanSetOptions gives 640 x 480"), "none");
  EXPECT_NE(refusal("ftrScanSetOptions answers text 'x'"), "none");
}

TEST_F(Faults, AFunctionThatCanNotFailIsNotToldTo) {
  for (const char* const function :
       {"ftrScanGetLastError", "ftrScanSetLastError", "ftrGetBaseInterfaceNumber",
        "CalibrateDelete", "CalibrateGetErrorDescription",
        "FakeFingerDetectionGetErrorDescriptionA", "OsvLFLog", "OsvLFFlush"}) {
    EXPECT_EQ(refusal(std::string(function) + " fails with 5"), at("fails")) << function;
  }
}

TEST_F(Faults, AFunctionThatAnswersWithNoNumberIsGivenNone) {
  for (const char* const function :
       {"ftrScanOpenDeviceOnInterface", "ftrScanCloseDevice", "ftrScanSetLastError",
        "CalibrateCreate", "CalibrateDelete", "CalibrateGetErrorDescription",
        "FakeFingerDetectionGetErrorDescriptionA", "OsvLFLog", "OsvLFFlush"}) {
    EXPECT_EQ(refusal(std::string(function) + " answers 5"), at("answers")) << function;
    EXPECT_EQ(refusal(std::string(function) + " answers 5 with error 6"), at("answers"))
        << function;
  }
}

TEST_F(Faults, AFunctionThatLeavesTheLastErrorAloneIsGivenNone) {
  for (const char* const function : {"ftrScanGetLastError", "ftrGetBaseInterfaceNumber"}) {
    EXPECT_EQ(refusal(std::string(function) + " answers 5 with error 6"), at("error")) << function;
    EXPECT_EQ(refusal(std::string(function) + " answers 5"), "none") << function;
  }
}

TEST_F(Faults, OnlyOptionsAndPropertiesHaveNames) {
  EXPECT_EQ(refusal("Calibrate of 'SensitiveMode' fails with 1"), at("of"));
  EXPECT_EQ(refusal("CalibrateSetOption of 'SensitiveMode = true' fails with 1"), "none");
  EXPECT_EQ(refusal("FakeFingerDetectionSetPropertyA of 'nSecurityLevel' fails with 1"), "none");
}

TEST_F(Faults, ANumberThatDoesNotFitIsRefused) {
  for (const std::string number : {"9223372036854775808", "-9223372036854775809"}) {
    EXPECT_EQ(refusal("Calibrate fails with " + number), at(number));
  }
  for (const std::string number : {"4294967296", "-2147483649"}) {
    EXPECT_EQ(refusal("ftrScanSetOptions fails with " + number), at(number));
    EXPECT_EQ(refusal("ftrScanSetOptions answers " + number), at(number));
    EXPECT_EQ(refusal("ftrScanSetOptions answers 0 with error " + number), at(number));
  }
  for (const std::string number : {"2147483648", "-2147483649"}) {
    EXPECT_EQ(refusal("ftrScanGetImageSize gives " + number + " x 480"), at(number));
    EXPECT_EQ(refusal("ftrScanGetImageSize gives 640 x " + number), at(number));
    EXPECT_EQ(refusal("ftrScanGetExtMemorySize gives " + number), at(number));
  }
  EXPECT_EQ(refusal("CalibrateGetErrorDescription gives text of -1 characters"), at("-1"));
  for (const std::string number : {"65536", "-1"}) {
    EXPECT_EQ(refusal("ftrScanGetVersion gives " + number), at(number));
  }
}

TEST_F(Faults, ASizeOfMemoryIsAWholeNumber) {
  EXPECT_EQ(refusal("ftrScanGetExtMemorySize gives 42.5"), at("42.5"));
}

TEST_F(Faults, AScoreIsAFiniteNumberOrNone) {
  bench.set_faults("FakeFingerDetectionEvaluateLiveliness gives nan");
  for (const std::string number : {"1e999", "inf", "-inf", "nano"}) {
    EXPECT_EQ(refusal("ContaminationDetection gives " + number), at(number));
    EXPECT_EQ(refusal("FakeFingerDetectionEvaluateLiveliness gives " + number), at(number));
  }
}

TEST_F(Faults, ARefusedPlanLeavesTheOldOne) {
  bench.set_faults("ftrScanGetImageByVariableDose fails with 31");
  EXPECT_NE(refusal("nonsense"), "none");
  EXPECT_EQ(take(), 0);
}

}  // namespace
}  // namespace Osv::simulator
