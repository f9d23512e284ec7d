#include <cerrno>
#include <new>
#include <string>
#include <vector>

#include "driver/calibration/calibration_fixture.h"
#include "foundation/temporary_file.h"

namespace Osv::testing_support {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::IsEmpty;

constexpr char kCorrupt[] = "The calibration data is corrupt.";
constexpr char kCorruptLine[] = "level 3, 'The calibration data is corrupt.'";

class BuildingFromTheScanner : public ScannerTest {
 protected:
  void change_memory(std::size_t position, unsigned char value) {
    auto memory = bench.memory(0);
    memory[position] = value;
    bench.set_memory(0, memory);
  }

  void expect_corrupt() {
    const LogOn log;
    const auto failure = failure_of_building<lx::ClLXException>();
    EXPECT_EQ(failure.GetErrorNumber(), 37);
    EXPECT_STREQ(failure.GetDescription(), kCorrupt);
    EXPECT_EQ(log_lines(bench).back(), kCorruptLine);
  }

  /// No engine is left, and of the libraries only the scanner's is open.
  void expect_nothing_left() {
    EXPECT_EQ(bench.count("CalibrateCreate"), bench.count("CalibrateDelete"));
    EXPECT_EQ(m_loader.opened().size(), static_cast<std::size_t>(m_loader.closed()) + 1);
  }
};

TEST_F(BuildingFromTheScanner, CreatesAnEngineReadsTheMemoryAndGivesThePayload) {
  const auto memory = std::to_string(bench.memory(0).size());
  const lx::CXCalibration calibration(m_scanner);
  const std::string payload = std::to_string(64 + 2 * 640 * 480);
  EXPECT_THAT(
      journal(),
      ElementsAre("CalibrateCreate() = handle 1", "ftrScanGetDeviceInfo(handle 2, buffer) = 1",
                  "ftrScanGetExtMemorySize(handle 2, buffer) = 1",
                  "ftrScanRestoreExtMemory(handle 2, buffer, offset 0, size 46) = 1",
                  "ftrScanGetExtMemorySize(handle 2, buffer) = 1",
                  "ftrScanRestoreExtMemory(handle 2, buffer, offset 0, size " + memory + ") = 1",
                  "CalibrateSetData(handle 1, data, size " + payload + ") = 0"));
}

TEST_F(BuildingFromTheScanner, IsLogged) {
  EXPECT_THAT(lines_of([&] { const lx::CXCalibration calibration(m_scanner); }),
              ElementsAre("level 7, 'KR9 scanner. Load OstrevanCalibrateSDK.dll'",
                          "level 7, 'Reading of the calibration data from KR9 scanner.'"));
}

TEST_F(BuildingFromTheScanner, GivesARevisionOfExactly16Bytes) {
  bench.plug_in(0, {.revision = std::string("r\0v", 3)});
  EXPECT_TRUE(m_scanner.Initialize());
  const lx::CXCalibration calibration(m_scanner);
  EXPECT_EQ(calibration.Revision(), std::string("r\0v", 3) + std::string(13, '\0'));
}

TEST_F(BuildingFromTheScanner, DeletesTheEngineBeforeItsLibraryIsClosed) {
  unsigned int deleted = 0;
  m_loader.before_closing([&] { deleted = bench.count("CalibrateDelete"); });
  { const lx::CXCalibration calibration(m_scanner); }
  m_loader.before_closing(nullptr);
  EXPECT_EQ(deleted, 1U);
  EXPECT_EQ(m_loader.closed(), 1);
}

TEST_F(BuildingFromTheScanner, WithoutTheEnginesLibraryTouchesNoScanner) {
  m_libraries.make_absent(kEngineLibrary);
  EXPECT_EQ(failure_of_building<CXOtherException>().GetErrorNumber(), -201);
  EXPECT_THAT(journal(), IsEmpty());
}

TEST_F(BuildingFromTheScanner, WithoutAnEngineIsBadAllocBeforeTheScannerIsAsked) {
  bench.set_faults("CalibrateCreate gives a null handle");
  EXPECT_THROW(const lx::CXCalibration calibration(m_scanner), std::bad_alloc);
  EXPECT_THAT(journal(), ElementsAre("CalibrateCreate() = null"));
  EXPECT_EQ(m_loader.closed(), 1);
}

TEST_F(BuildingFromTheScanner, WithoutExtendedMemoryIsNumber37) {
  bench.set_faults("ftrScanGetExtMemorySize fails with 8");
  expect_corrupt();
}

TEST_F(BuildingFromTheScanner, WithAMemoryOfSize0IsNumber37) {
  bench.set_faults("ftrScanGetExtMemorySize gives 0");
  expect_corrupt();
}

TEST_F(BuildingFromTheScanner, WithAnotherVersionIsNumber37) {
  change_memory(0, 2);
  expect_corrupt();
}

TEST_F(BuildingFromTheScanner, WithADescriptionTooLongForTheMemoryIsNumber37) {
  bench.set_faults("ftrScanGetExtMemorySize gives 42");
  expect_corrupt();
}

TEST_F(BuildingFromTheScanner, WithAWrongSignatureIsNumber37) {
  change_memory(25 + 9, 'X');
  expect_corrupt();
}

TEST_F(BuildingFromTheScanner, WithAWrongSignatureReadsTheMemoryNoFurther) {
  change_memory(25 + 9, 'X');
  (void)failure_of_building<lx::ClLXException>();
  EXPECT_EQ(bench.count("ftrScanGetExtMemorySize"), 1U);
  expect_nothing_left();
}

TEST_F(BuildingFromTheScanner, WithAPayloadOfSize0IsNumber37AndGivesTheEngineNothing) {
  for (std::size_t i = 0; i < 4; ++i) {
    change_memory(21 + 9 + i, 0);
  }
  expect_corrupt();
  EXPECT_EQ(bench.count("CalibrateSetData"), 0U);
}

TEST_F(BuildingFromTheScanner, WithANegativeOrAbsurdMemorySizeIsNumber37AndLeavesNoObject) {
  for (const char* const size : {"-1", "67108865"}) {
    SCOPED_TRACE(size);
    bench.clear_journal();
    bench.set_faults(std::string("ftrScanGetExtMemorySize call 2 gives ") + size);
    expect_corrupt();
    EXPECT_EQ(bench.count("ftrScanRestoreExtMemory"), 1U);  // the family test's
    expect_nothing_left();
  }
}

TEST_F(BuildingFromTheScanner, WithABlockThatEndsBehindTheMemoryIsAFormatFailure) {
  change_memory(21 + 9 + 3, 0x7F);
  const auto failure = failure_of_building<ClHeaderFormatException>();
  EXPECT_STREQ(failure.GetDescription(), kCorrupt);
  expect_nothing_left();
}

TEST_F(BuildingFromTheScanner, WithAnotherVersionAtTheFullReadPassesTheFormatFailureOn) {
  std::vector<unsigned char> byte(1);
  m_scanner.ReadRaw(byte.data(), 1);  // the full read begins behind it
  bench.set_faults("ftrScanGetExtMemorySize call 2 gives 1000");
  const auto failure = failure_of_building<ClHeaderFormatException>();
  EXPECT_EQ(failure.GetErrorNumber(), -1);
  EXPECT_STREQ(failure.GetDescription(), "The calibration data are corrupt.");
  expect_nothing_left();
}

TEST_F(BuildingFromTheScanner, WithAMemorySizeThatCantBeReadHasTheScannersNumber) {
  bench.set_faults("ftrScanGetExtMemorySize call 2 fails with 0x20000004");
  const auto failure = failure_of_building<lx::ClLXException>();
  EXPECT_EQ(failure.GetErrorNumber(), 0x20000004);
  EXPECT_STREQ(failure.GetDescription(), "Read the scanner memory size failed.");
  expect_nothing_left();
}

TEST_F(BuildingFromTheScanner, WithAMemorySizeThatCantBeReadLogsTheScannersNumber) {
  bench.set_faults("ftrScanGetExtMemorySize call 2 fails with 259");
  EXPECT_EQ(lines_of([&] { (void)failure_of_building<lx::ClLXException>(); }).back(),
            "level 3, 'Reading of the KR9 scanner memory failed. Error number: 0x2'");
}

TEST_F(BuildingFromTheScanner, PassesOnThatTheMemoryCantBeRead) {
  bench.set_faults("ftrScanRestoreExtMemory call 2 fails with 5");
  errno = EIO;
  EXPECT_EQ(failure_of_building<CXSystemException>().GetErrorNumber(), EIO);
  expect_nothing_left();
}

TEST_F(BuildingFromTheScanner, PassesOnThatTheMemoryIsNotSupported) {
  bench.set_faults("ftrScanRestoreExtMemory call 2 fails with 8");
  EXPECT_EQ(failure_of_building<lx::ClKR9NOTImplException>().GetErrorNumber(), 22);
}

TEST_F(BuildingFromTheScanner, WithDataThatTheEngineRefusesLeavesNoObject) {
  bench.set_faults("CalibrateSetData fails with -5");
  const auto failure = failure_of_building<lx::ClLXException>();
  EXPECT_EQ(failure.GetErrorNumber(), -5);
  EXPECT_THAT(failure.GetDescription(), EndsWith(" Error domain [ CAL ]. Error code [ -5 ]"));
  expect_nothing_left();
}

class BuildingFromAFile : public ScannerTest {
 protected:
  /// A file with the payload of the scanner behind `preamble` bytes.
  std::string content(std::size_t preamble) const {
    const auto memory = bench.memory(0);
    const auto payload = memory.begin() + 25 + 9;
    return std::string(preamble, 'p') + std::string(payload, payload + 64 + 2L * 640 * 480);
  }
};

TEST_F(BuildingFromAFile, GivesTheEngineWhatStandsBehind100Bytes) {
  const TemporaryFile file(content(100));
  const lx::CXCalibration calibration(file.path().c_str());
  EXPECT_THAT(journal(), ElementsAre("CalibrateCreate() = handle 1",
                                     "CalibrateSetData(handle 1, data, size 614464) = 0"));
}

TEST_F(BuildingFromAFile, LogsNothingButTheLoading) {
  const TemporaryFile file(content(100));
  EXPECT_THAT(lines_of([&] { const lx::CXCalibration calibration(file.path().c_str()); }),
              ElementsAre("level 7, 'KR9 scanner. Load OstrevanCalibrateSDK.dll'"));
}

TEST_F(BuildingFromAFile, HasAnEmptyRevision) {
  const TemporaryFile file(content(100));
  EXPECT_EQ(lx::CXCalibration(file.path().c_str()).Revision(), "");
}

TEST_F(BuildingFromAFile, OfExactly100BytesGivesTheEngineNoByte) {
  const TemporaryFile file(std::string(100, 'p'));
  bench.set_faults("CalibrateSetData answers 0");
  const lx::CXCalibration calibration(file.path().c_str());
  EXPECT_EQ(bench.count("CalibrateSetData"), 1U);
}

TEST_F(BuildingFromAFile, OfFewerThan100BytesIsNumber37) {
  const TemporaryFile file(std::string(99, 'p'));
  const auto failure = failure_of<lx::ClLXException>(
      [&] { const lx::CXCalibration calibration(file.path().c_str()); });
  EXPECT_EQ(failure.GetErrorNumber(), 37);
  EXPECT_EQ(bench.count("CalibrateSetData"), 0U);
}

TEST_F(BuildingFromAFile, ThatTheEngineRefusesLeavesNoObject) {
  const TemporaryFile file(content(99));
  EXPECT_EQ(failure_of<lx::ClLXException>([&] {
              const lx::CXCalibration calibration(file.path().c_str());
            }).GetErrorNumber(),
            -5);
  EXPECT_EQ(bench.count("CalibrateDelete"), 1U);
}

TEST_F(BuildingFromAFile, ThatDoesNotExistIsNotFound) {
  EXPECT_THROW(const lx::CXCalibration calibration("/nonexistent/file"), file::CXFileNotFound);
  EXPECT_EQ(bench.count("CalibrateDelete"), 1U);
}

}  // namespace
}  // namespace Osv::testing_support
