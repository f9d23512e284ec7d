#include "driver/calibration/calibration.h"

#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "driver/calibration/calibration_fixture.h"
#include "driver/calibration/disable_dyn_calibration.h"
#include "driver/support/mutex_watch.h"
#include "support/comma_locale.h"

namespace Osv::testing_support {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

constexpr char kNoSize[] = "The Calibrate methode return the output bitmap size 0";

template <class Action>
lx::ClLXException engine_failure(Action action) {
  return failure_of<lx::ClLXException>(action);
}

/// An engine with one text for all its errors.
class TestWithAnEnginesText : public CalibrationTest {
 protected:
  void describe_as(const char* text) {
    sText = text;
    m_loader.give("CalibrateGetErrorDescription",
                  reinterpret_cast<void*>(+[](long) -> const char* { return sText; }));
    build();
  }

 private:
  static inline const char* sText = nullptr;
};

using OutputSize = CalibrationTest;

TEST_F(OutputSize, IsAskedForWithANullOutputOfSize0) {
  EXPECT_EQ(result_size(), kFinalSize);
  EXPECT_EQ(journal().size(), 1U);
  EXPECT_THAT(journal()[0],
              StartsWith("Calibrate(handle 1, input 308264, output null, size 0) = "));
}

TEST_F(OutputSize, IsTakenFromAnEngineThatAnswersMinus21) {
  bench.set_faults("Calibrate answers -21 with size 1234");
  EXPECT_EQ(result_size(), 1234UL);
  EXPECT_EQ(bench.count("CalibrateGetErrorDescription"), 0U);
}

TEST_F(OutputSize, IsTakenFromAnEngineThatAnswers0WithoutALogLine) {
  bench.set_faults("Calibrate answers 0 with size 1234");
  EXPECT_THAT(lines_of([&] { EXPECT_EQ(result_size(), 1234UL); }), IsEmpty());
}

TEST_F(OutputSize, Of0IsMinus1WhateverTheEngineAnswers) {
  for (const char* const code : {"0", "-21"}) {
    bench.set_faults(std::string("Calibrate answers ") + code + " with size 0");
    const auto failure = engine_failure([&] { (void)result_size(); });
    EXPECT_EQ(failure.GetErrorNumber(), -1) << code;
    EXPECT_STREQ(failure.GetDescription(), kNoSize) << code;
  }
}

TEST_F(OutputSize, Of0IsLogged) {
  bench.set_faults("Calibrate answers 0 with size 0");
  EXPECT_THAT(lines_of([&] { engine_failure([&] { (void)result_size(); }); }),
              ElementsAre("level 3, 'KR9 scanner. The calibrate methode returns bitmap size "
                          "zero.'"));
}

TEST_F(OutputSize, FailsWithAnyOtherCodeThoughThereIsASize) {
  bench.set_faults("Calibrate answers -7 with size 1234");
  EXPECT_EQ(engine_failure([&] { (void)result_size(); }).GetErrorNumber(), -7);
}

class CorrectedBitmap : public CalibrationTest {
 protected:
  void calibrate(unsigned long room = kFinalSize) {
    m_size = room;
    m_calibration->CalibrateBitmap(m_raw.BI(), kRawSize, header(), &m_size);
  }

  tagBITMAPINFOHEADER* header() { return reinterpret_cast<tagBITMAPINFOHEADER*>(m_block.data()); }

  /// An engine that writes the header of `sHeader` and nothing else.
  void write_header_only(const tagBITMAPINFOHEADER& written) {
    sHeader = written;
    m_loader.give("Calibrate",
                  reinterpret_cast<void*>(+[](void*, const tagBITMAPINFOHEADER*, unsigned long,
                                              tagBITMAPINFOHEADER* output, unsigned long*) -> long {
                    *output = sHeader;
                    return 0;
                  }));
    build();
  }

  static inline tagBITMAPINFOHEADER sHeader{};
  std::vector<unsigned char> m_block = std::vector<unsigned char>(kFinalSize);
  unsigned long m_size = 0;
};

TEST_F(CorrectedBitmap, GoesStraightIntoTheCallersBuffer) {
  calibrate();
  EXPECT_THAT(journal(),
              ElementsAre("Calibrate(handle 1, input 308264, output buffer, size 220064) = 0, "
                          "size 220064"));
  EXPECT_EQ(header()->biWidth, simulator::kFinalWidth);
  EXPECT_EQ(header()->biHeight, simulator::kFinalHeight);
}

TEST_F(CorrectedBitmap, IsLoggedWithTheInputsSize) {
  EXPECT_THAT(lines_of([&] { calibrate(); }),
              ElementsAre("level 7, 'KR9 scanner. Calibrate, a image size: 308264'"));
}

TEST_F(CorrectedBitmap, FailsWithTheEnginesCodeMinus21Too) {
  for (const int code : {-7, -21}) {
    bench.set_faults("Calibrate fails with " + std::to_string(code));
    EXPECT_EQ(engine_failure([&] { calibrate(); }).GetErrorNumber(), code);
  }
}

TEST_F(CorrectedBitmap, NeverGrowsTheSizeOfTheBuffer) {
  bench.set_faults("Calibrate answers 0 with size 999999");
  calibrate();
  EXPECT_EQ(m_size, kFinalSize);
}

TEST_F(CorrectedBitmap, NeverGrowsTheSizeOfTheBufferInAFailureEither) {
  EXPECT_EQ(engine_failure([&] { calibrate(100); }).GetErrorNumber(), -21);
  EXPECT_EQ(m_size, 100UL);
}

TEST_F(CorrectedBitmap, ThatDoesNotLieInItsBufferIsMinus1) {
  constexpr std::int32_t kHuge = 0x7FFFFFFF;
  const tagBITMAPINFOHEADER written[] = {
      {40, 500, 439, 1, 8, 0, 0, 0, 0, 0, 0},   // one row too many
      {40, -498, 438, 1, 8, 0, 0, 0, 0, 0, 0},  // negative sides
      {40, 498, -438, 1, 8, 0, 0, 0, 0, 0, 0},
      {40, 55006, 1, 1, 32, 3, 0, 0, 0, 0, 0},   // colour masks, which only one count sees
      {40, 500, 439, 1, 8, 3, 0, 0, 0, 256, 0},  // a palette, of which the other sees 3 entries
      {40, kHuge, kHuge, 1, 0xFFFF, 0, 0, 0, 0, 0, 0},  // sizes that overflow
      {40, kHuge, kHuge, 1, 32, 0, 0, 0, 0, 0xFFFFFFFF, 0}};
  for (const tagBITMAPINFOHEADER& header : written) {
    write_header_only(header);
    const auto failure = engine_failure([&] { calibrate(); });
    EXPECT_EQ(failure.GetErrorNumber(), -1);
    EXPECT_STREQ(failure.GetDescription(), kNoSize);
  }
}

TEST_F(CorrectedBitmap, ThatHasNoRoomForItsHeaderIsMinus1) {
  m_loader.give("Calibrate", reinterpret_cast<void*>(+[](void*, const tagBITMAPINFOHEADER*,
                                                         unsigned long, tagBITMAPINFOHEADER*,
                                                         unsigned long*) -> long { return 0; }));
  build();
  for (const unsigned long size : {1UL, 39UL}) {
    m_block = std::vector<unsigned char>(size);  // in which a look at the header would be noticed
    const auto failure = engine_failure([&] { calibrate(size); });
    EXPECT_EQ(failure.GetErrorNumber(), -1) << size;
    EXPECT_STREQ(failure.GetDescription(), kNoSize) << size;
  }
}

TEST_F(CorrectedBitmap, WithLessThanAByteForAPixelIsMinus1) {
  constexpr std::uint16_t kDepths[] = {0, 1, 4};
  for (const std::uint16_t depth : kDepths) {
    write_header_only({40, 498, 438, 1, depth, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(engine_failure([&] { calibrate(); }).GetErrorNumber(), -1) << depth;
  }
}

using SensitiveMode = CalibrationTest;

TEST_F(SensitiveMode, IsSetWithAnOptionWithoutBlanks) {
  m_calibration->EnableSensitiveMode(true);
  m_calibration->EnableSensitiveMode(false);
  EXPECT_THAT(journal(), ElementsAre("CalibrateSetOption(handle 1, 'SensitiveMode=true') = 0",
                                     "CalibrateSetOption(handle 1, 'SensitiveMode=false') = 0"));
}

TEST_F(SensitiveMode, IsWhatTheEngineTells) {
  EXPECT_FALSE(m_calibration->IsSensitiveMode());
  m_calibration->EnableSensitiveMode(true);
  EXPECT_TRUE(m_calibration->IsSensitiveMode());
}

TEST_F(SensitiveMode, IsAskedForWithALengthOf10) {
  m_calibration->EnableSensitiveMode(true);
  bench.clear_journal();
  (void)m_calibration->IsSensitiveMode();
  EXPECT_THAT(journal(),
              ElementsAre("CalibrateGetOption(handle 1, 'SensitiveMode', length 10) = 0, "
                          "'Enabled'"));
}

TEST_F(SensitiveMode, IsOffForEveryValueButEnabled) {
  for (const char* const value : {"EnabledX", "Enabled ", "enabled", "ENABLED", "Enable", ""}) {
    bench.set_faults(std::string("CalibrateGetOption answers text '") + value + "'");
    EXPECT_FALSE(m_calibration->IsSensitiveMode()) << value;
  }
}

TEST_F(SensitiveMode, IsOffWithoutAnErrorForAnEngineThatDoesNotKnowIt) {
  bench.set_faults("CalibrateGetOption fails with -37");
  EXPECT_THAT(lines_of([&] { EXPECT_FALSE(m_calibration->IsSensitiveMode()); }), IsEmpty());
  EXPECT_EQ(bench.count("CalibrateGetErrorDescription"), 0U);
}

TEST_F(SensitiveMode, FailsWithAnyOtherCode) {
  bench.set_faults("CalibrateGetOption fails with -21; CalibrateSetOption fails with -37");
  EXPECT_EQ(engine_failure([&] { (void)m_calibration->IsSensitiveMode(); }).GetErrorNumber(), -21);
  EXPECT_EQ(engine_failure([&] { m_calibration->EnableSensitiveMode(true); }).GetErrorNumber(),
            -37);
}

using DynamicCalibration = TestWithAnEnginesText;

TEST_F(DynamicCalibration, IsSetWithAnOptionWithBlanks) {
  m_calibration->EnableDynCalibration(true);
  m_calibration->EnableDynCalibration(false);
  EXPECT_THAT(journal(),
              ElementsAre("CalibrateSetOption(handle 1, 'DynamicFingerMask = true') = 0",
                          "CalibrateSetOption(handle 1, 'DynamicFingerMask = false') = 0"));
}

TEST_F(DynamicCalibration, FailsWithTheEnginesCode) {
  bench.set_faults("CalibrateSetOption fails with -8");
  EXPECT_EQ(engine_failure([&] { m_calibration->EnableDynCalibration(true); }).GetErrorNumber(),
            -8);
}

TEST_F(DynamicCalibration, IsOffWhileAGuardLives) {
  {
    const lx::CXDisableDynCalibration guard(*m_calibration);
    EXPECT_THAT(journal(),
                ElementsAre("CalibrateSetOption(handle 1, 'DynamicFingerMask = false') = 0"));
  }
  EXPECT_EQ(journal().back(), "CalibrateSetOption(handle 1, 'DynamicFingerMask = true') = 0");
}

TEST_F(DynamicCalibration, AGuardThatCantSwitchItOffPassesTheFailureOn) {
  bench.set_faults("CalibrateSetOption fails with -8");
  EXPECT_THROW(const lx::CXDisableDynCalibration guard(*m_calibration), lx::ClLXException);
  EXPECT_EQ(bench.count("CalibrateSetOption"), 1U);
}

TEST_F(DynamicCalibration, AGuardThatCantSwitchItOnAgainLogsTheEnginesErrorAndItsOwnLine) {
  describe_as("Something failed.");
  bench.set_faults("CalibrateSetOption call 2 fails with -8");
  EXPECT_THAT(lines_of([&] { const lx::CXDisableDynCalibration guard(*m_calibration); }),
              ElementsAre("level 3, 'KR9 scanner. Calibration error. Number: 0xfffffff8, "
                          "Description: Something failed. '",
                          "level 3, 'KR9 scanner, failed to enbalbe dynamic calibration. Message: "
                          "Something failed. Error domain [ CAL ]. Error code [ -8 ]'"));
}

TEST_F(DynamicCalibration, AGuardThatCantSwitchItOnAgainLogsNoTextWhereTheEngineHasNone) {
  describe_as(nullptr);
  bench.set_faults("CalibrateSetOption call 2 fails with -8");
  EXPECT_EQ(lines_of([&] { const lx::CXDisableDynCalibration guard(*m_calibration); }).back(),
            "level 3, 'KR9 scanner, failed to enbalbe dynamic calibration. Message: '");
}

TEST_F(DynamicCalibration, AGuardThatCantSwitchItOnAgainIsSilentWithoutALog) {
  bench.set_faults("CalibrateSetOption call 2 fails with -8");
  EXPECT_NO_THROW(const lx::CXDisableDynCalibration guard(*m_calibration));
  EXPECT_THAT(log_lines(bench), IsEmpty());
}

using Contamination = CalibrationTest;

TEST_F(Contamination, IsAskedForWithTheSizeOfTheBitmap) {
  bench.set_faults("ContaminationDetection gives 12.5");
  EXPECT_EQ(m_calibration->ContaminationDetection(m_raw.BI()), 12.5);
  EXPECT_THAT(journal(), ElementsAre("ContaminationDetection(handle 1, bitmap, size 308264) = 0"));
}

TEST_F(Contamination, StartsAt0ForAnEngineThatStoresNone) {
  m_loader.give(
      "ContaminationDetection",
      reinterpret_cast<void*>(+[](void*, const tagBITMAPINFOHEADER*, unsigned long,
                                  double* level) -> long { return *level == 0.0 ? 0 : -1; }));
  build();
  EXPECT_EQ(m_calibration->ContaminationDetection(m_raw.BI()), 0.0);
}

TEST_F(Contamination, FailsWithTheEnginesCode) {
  bench.set_faults("ContaminationDetection fails with -6");
  EXPECT_EQ(engine_failure([&] {
              (void)m_calibration->ContaminationDetection(m_raw.BI());
            }).GetErrorNumber(),
            -6);
}

class EngineError : public TestWithAnEnginesText {
 protected:
  lx::ClLXException failure(long code) {
    return engine_failure([&] { m_calibration->CheckCalibrateError(code); });
  }
};

TEST_F(EngineError, Of0IsNone) {
  m_calibration->CheckCalibrateError(0);
  EXPECT_THAT(journal(), IsEmpty());
}

TEST_F(EngineError, IsWordedWithItsTextAndItsSignedCode) {
  describe_as("Something failed.");
  EXPECT_STREQ(failure(-12).GetDescription(),
               "Something failed. Error domain [ CAL ]. Error code [ -12 ]");
  EXPECT_EQ(failure(-12).GetErrorNumber(), -12);
}

TEST_F(EngineError, IsLoggedWithABlankAtTheEnd) {
  describe_as("Something failed.");
  EXPECT_THAT(lines_of([&] { (void)failure(-12); }),
              ElementsAre("level 3, 'KR9 scanner. Calibration error. Number: 0xfffffff4, "
                          "Description: Something failed. '"));
}

TEST_F(EngineError, WithANullTextHasAnEmptyTextButStillTheCode) {
  bench.set_faults("CalibrateGetErrorDescription gives no text");
  const auto error = failure(-12);
  EXPECT_STREQ(error.GetDescription(), "");
  EXPECT_EQ(error.GetErrorNumber(), -12);
}

TEST_F(EngineError, WithANullTextIsLoggedWithAnEmptyOne) {
  describe_as(nullptr);
  EXPECT_THAT(lines_of([&] { (void)failure(-12); }),
              ElementsAre("level 3, 'KR9 scanner. Calibration error. Number: 0xfffffff4, "
                          "Description:  '"));
}

TEST_F(EngineError, IsWordedWithoutTheClientsLocale) {
  const CommaLocale locale;
  describe_as("Something failed.");
  EXPECT_STREQ(failure(-4000).GetDescription(),
               "Something failed. Error domain [ CAL ]. Error code [ -4000 ]");
}

TEST_F(EngineError, WithAnEmptyTextStillTellsItsCode) {
  describe_as("");
  EXPECT_STREQ(failure(5).GetDescription(), " Error domain [ CAL ]. Error code [ 5 ]");
}

TEST_F(EngineError, CutsTheCodeTo32BitsAndTheMessageAt1024Characters) {
  const std::string text(1500, 'x');
  describe_as(text.c_str());
  const auto error = failure(0x7FFFFFFF5L);
  EXPECT_EQ(error.GetErrorNumber(), static_cast<int>(0xFFFFFFF5));
  EXPECT_EQ(error.GetDescription(), std::string(1024, 'x'));
}

/// An engine whose functions look at the mutex that their caller holds.
class EngineLock : public CalibrationTest {
 protected:
  EngineLock() {
    sMutexes.clear();
    m_loader.give("Calibrate", reinterpret_cast<void*>(+[](void*, const tagBITMAPINFOHEADER*,
                                                           unsigned long, tagBITMAPINFOHEADER*,
                                                           unsigned long*) { return note(); }));
    m_loader.give(
        "CalibrateGetOption",
        reinterpret_cast<void*>(+[](void*, const char*, char*, unsigned long*) { return note(); }));
    m_loader.give("CalibrateSetOption",
                  reinterpret_cast<void*>(+[](void*, const char*) { return note(); }));
    m_loader.give("ContaminationDetection",
                  reinterpret_cast<void*>(+[](void*, const tagBITMAPINFOHEADER*, unsigned long,
                                              double*) { return note(); }));
    m_loader.give("CalibrateGetErrorDescription", reinterpret_cast<void*>(+[](long) -> const char* {
                    note();
                    return nullptr;
                  }));
    m_loader.give("CalibrateCreate", reinterpret_cast<void*>(+[]() -> void* {
                    note();
                    return &sMutexes;
                  }));
    m_loader.give("CalibrateSetData",
                  reinterpret_cast<void*>(+[](void*, const unsigned char*, unsigned long) {
                    note();
                    return 0L;
                  }));
    m_loader.give("CalibrateDelete", reinterpret_cast<void*>(+[](void**) { note(); }));
    build();
    sMutexes.clear();
  }

  static long note() {
    sMutexes.push_back(innermost_held());
    EXPECT_TRUE(is_held(sMutexes.back())) << "call " << sMutexes.size();
    return -7;
  }

  static inline std::vector<pthread_mutex_t*> sMutexes;
};

TEST_F(EngineLock, IsTheSameForEveryCallIntoTheEngine) {
  unsigned long size = kRawSize;
  const std::function<void()> operations[] = {
      [&] { (void)result_size(); },
      [&] { m_calibration->CalibrateBitmap(m_raw.BI(), kRawSize, m_raw.BI(), &size); },
      [&] { (void)m_calibration->IsSensitiveMode(); },
      [&] { m_calibration->EnableSensitiveMode(true); },
      [&] { (void)m_calibration->ContaminationDetection(m_raw.BI()); }};
  for (const auto& operation : operations) {
    EXPECT_EQ(engine_failure(operation).GetErrorNumber(), -7);
  }
  ASSERT_EQ(sMutexes.size(), 2 * std::size(operations));  // each with the text of its error
  EXPECT_THAT(sMutexes, Each(sMutexes.front()));
}

// During a reopening two of them are there.
TEST_F(EngineLock, IsTheSameForEveryEngineThatIsMadeUsedAndDeleted) {
  m_scanner.ResetStream();
  { const lx::CXCalibration another(m_scanner); }
  EXPECT_ANY_THROW(m_calibration->EnableSensitiveMode(true));
  ASSERT_EQ(sMutexes.size(), 5U);
  EXPECT_THAT(sMutexes, Each(sMutexes.front()));
}

}  // namespace
}  // namespace Osv::testing_support
