#include <gtest/gtest.h>

#include <algorithm>
#include <future>

#include "driver/driver_fixture.h"

namespace Osv::lx {
namespace {

using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

using Names = std::vector<std::string>;

/// What the driver asks of the device to tell a scanner of the family.
const Names kFamilyTest = {"ftrScanGetDeviceInfo", "ftrScanGetExtMemorySize",
                           "ftrScanRestoreExtMemory"};

Names joined(std::initializer_list<Names> parts) {
  Names all;
  for (const Names& part : parts) {
    all.insert(all.end(), part.begin(), part.end());
  }
  return all;
}

/// One scanner in the list.
Names listing() {
  return joined({{"ftrScanGetInterfaces", "ftrScanOpenDeviceOnInterface"},
                 kFamilyTest,
                 {"ftrScanGetSerialNumber", "ftrScanCloseDevice"}});
}

Names choosing() {
  return joined({{"ftrScanOpenDeviceOnInterface"},
                 kFamilyTest,
                 {"ftrScanCloseDevice", "ftrSetBaseInterface"}});
}

Names opening() {
  return joined({listing(),
                 {"ftrScanOpenDeviceOnInterface", "ftrScanSetOptions", "CalibrateCreate"},
                 kFamilyTest,
                 {"ftrScanGetExtMemorySize", "ftrScanRestoreExtMemory", "CalibrateSetData"}});
}

struct Opening : DriverFixture {};

TEST_F(Opening, TheFirstOneListsChoosesTheFirstScannerAndOpensIt) {
  EXPECT_EQ(driver.InitializeScanner(), 0UL);
  EXPECT_THAT(functions(), ElementsAreArray(joined({listing(), choosing(), opening()})));
}

TEST_F(Opening, ALaterOneListsAndOpens) {
  open();
  driver.UninitializeScanner();
  bench.clear_journal();
  EXPECT_EQ(driver.InitializeScanner(), 0UL);
  EXPECT_THAT(functions(), ElementsAreArray(joined({opening(), {"CalibrateDelete"}})));
}

TEST_F(Opening, AnOpenScannerIsNotTouched) {
  open();
  EXPECT_EQ(driver.InitializeScanner(), 0UL);
  EXPECT_THAT(story(), IsEmpty());
}

TEST_F(Opening, TheLongImageIsSwitchedOnWithMask4AndFlags4) {
  driver.InitializeScanner();
  EXPECT_THAT(journal("ftrScanSetOptions"),
              ::testing::ElementsAre(::testing::HasSubstr("mask 4, flags 4")));
  EXPECT_EQ(bench.state(0).options, 4U);
}

TEST_F(Opening, TheExtendedMemoryIsAnnouncedBetweenLongImageAndCalibration) {
  driver.InitializeScanner();
  const auto entries = story();
  const auto options = std::find(entries.begin(), entries.end(), "ftrScanSetOptions");
  ASSERT_GE(entries.end() - options, 3);
  EXPECT_EQ(options[1], "7 KR9 scanner. The extended memory was detected.");
  EXPECT_EQ(options[2], "7 KR9 scanner. Load OstrevanCalibrateSDK.dll");
}

TEST_F(Opening, TheScannerThatIsOpenedIsTheFirstOneListed) {
  bench.unplug_all();
  bench.plug_in(9, {.serial = "HVK30009"});
  bench.plug_in(4, {.serial = "HVK30004"});
  EXPECT_EQ(driver.InitializeScanner(), 0UL);
  EXPECT_EQ(driver.m_nActiveScanner, 4U);
  EXPECT_EQ(bench.base_interface(), 4);
  EXPECT_EQ(bench.state(4).open_handles, 1U);
}

TEST_F(Opening, WithoutAScannerTheResultIs2AndNothingIsLeftOpen) {
  bench.unplug_all();
  EXPECT_EQ(driver.InitializeScanner(), 2UL);
  EXPECT_EQ(driver.m_nActiveScanner, Driver::kNoActiveScanner);
  EXPECT_FALSE(driver.m_bInitialized);
  EXPECT_THAT(functions(), ::testing::ElementsAre("ftrScanGetInterfaces"));
}

TEST_F(Opening, AScannerPluggedInLaterIsFoundByTheNextOne) {
  bench.unplug(0);
  EXPECT_EQ(driver.InitializeScanner(), 2UL);
  bench.plug_in_again(0);
  EXPECT_EQ(driver.InitializeScanner(), 0UL);
  EXPECT_TRUE(driver.m_bInitialized);
}

TEST_F(Opening, TheImageDataFormatStartsAnew) {
  driver.m_nImageDataFormat = 2;
  open();
  EXPECT_EQ(driver.m_nImageDataFormat, 1);
}

TEST_F(Opening, TheImageDataFormatStartsAnewEvenWhenItFails) {
  bench.unplug_all();
  driver.m_nImageDataFormat = 2;
  EXPECT_EQ(driver.InitializeScanner(), 2UL);
  EXPECT_EQ(driver.m_nImageDataFormat, 1);
}

TEST_F(Opening, TheImageDataFormatOfAnOpenScannerStays) {
  open();
  driver.m_nImageDataFormat = 2;
  EXPECT_EQ(driver.InitializeScanner(), 0UL);
  EXPECT_EQ(driver.m_nImageDataFormat, 2);
}

TEST_F(Opening, TheConfigurationFileIsReadAtEachOne) {
  const test::ConfigurationFile file("[SDK]\nDose = 10\n");
  open();
  driver.UninitializeScanner();
  const unsigned int before = test::configuration_file_openings();
  open();
  EXPECT_EQ(test::configuration_file_openings(), before + 1);
  EXPECT_EQ(driver.m_cSetting.m_nDose, 60UL);
}

TEST_F(Opening, ADeviceThatCannotBeOpenedGivesItsNumberAsResult) {
  open();
  driver.UninitializeScanner();
  bench.set_faults("ftrScanOpenDeviceOnInterface call 2 fails with 55");
  EXPECT_EQ(driver.InitializeScanner(), 55UL);
  EXPECT_FALSE(driver.m_bInitialized);
}

TEST_F(Opening, ADeviceThatIsGoneGives2) {
  open();
  driver.UninitializeScanner();
  bench.unplug(0);
  bench.set_faults("ftrScanGetLastError answers 259");
  EXPECT_EQ(driver.InitializeScanner(), 2UL);
}

TEST_F(Opening, ARefusedLongImageStopsItWithTheScannersNumber) {
  bench.set_faults("ftrScanSetOptions fails with 55");
  EXPECT_EQ(failure_of([&] { driver.InitializeScanner(); }),
            (Failure{55, "KR9 scanner. Set camara resolution failed."}));
}

TEST_F(Opening, HardwareWithoutTheLongImageDoesNotStopIt) {
  bench.set_faults("ftrScanSetOptions fails with 0x20000004");
  EXPECT_EQ(driver.InitializeScanner(), 0UL);
  EXPECT_TRUE(driver.m_bInitialized);
}

TEST_F(Opening, AFailureBehindTheDeviceLeavesTheDeviceOpenAndTheNextOneClosesItFirst) {
  bench.set_faults("ftrScanSetOptions call 1 fails with 55");
  failure_of([&] { driver.InitializeScanner(); });
  EXPECT_FALSE(driver.m_bInitialized);
  EXPECT_EQ(bench.state(0).open_handles, 1U);
  bench.clear_journal();
  EXPECT_EQ(driver.InitializeScanner(), 0UL);
  EXPECT_THAT(
      functions(),
      ElementsAreArray(joined({{"ftrScanSetDiodesStatus", "ftrScanCloseDevice"}, opening()})));
  EXPECT_EQ(bench.state(0).open_handles, 1U);
}

TEST_F(Opening, AScannerLibraryWithoutTheExtendedFunctionsListsNoScanner) {
  libraries.leave_out("libKR9ScanAPI.so", "ftrScanGetVersion");
  EXPECT_EQ(driver.InitializeScanner(), 2UL);
}

TEST_F(Opening, AnApiOfTheBaseLevelIsLoggedAndRefusedWithNumber40) {
  EXPECT_EQ(failure_of([&] { driver.RequireExtendedApi(); }),
            (Failure{40, "The KR9 API version isn't more supported"}));
  EXPECT_THAT(log_lines(),
              ::testing::ElementsAre("7 KR9 scanner. The base version of API was detected. The "
                                     "extended memory couldn't be used."));
}

TEST_F(Opening, ACorruptHeaderIsLoggedAtLevel3AndRefusedWithItsTextAndNumber37) {
  constexpr std::size_t kPayloadSizeLow = 20 + 1 + 9;  // behind the description "simulator"
  auto memory = bench.memory(0);
  memory.at(kPayloadSizeLow + 3) = 0x7F;
  bench.set_memory(0, memory);
  EXPECT_EQ(failure_of([&] { driver.InitializeScanner(); }),
            (Failure{37, "The calibration data is corrupt."}));
  EXPECT_EQ(log_lines().back(),
            "3 KR9 scanner. HeaderFormatException: The calibration data is corrupt.");
  EXPECT_FALSE(driver.m_bInitialized);
}

// The version is right when the scanner is told from other devices, and wrong when the whole memory
// is read, the fifth time that it is looked at.
TEST_F(Opening, AVersionThatTurnsWrongIsLoggedAtLevel3AndRefusedWithItsOwnTextAndNumber37) {
  bench.set_faults("ftrScanRestoreExtMemory call 5 blocks until told");
  auto opening = std::async(std::launch::async, [&] { driver.InitializeScanner(); });
  bench.wait_until_blocked("ftrScanRestoreExtMemory");
  auto memory = bench.memory(0);
  memory.at(0) = 2;
  bench.set_memory(0, memory);
  bench.release();
  EXPECT_EQ(failure_of([&] { opening.get(); }), (Failure{37, "The calibration data are corrupt."}));
  EXPECT_EQ(log_lines().back(),
            "3 KR9 scanner. HeaderFormatException: The calibration data are corrupt.");
  EXPECT_FALSE(driver.m_bInitialized);
}

TEST_F(Opening, AMissingEngineStopsItWithTheLoadersFailure) {
  libraries.make_absent("libostrevancalibratesdk.so");
  try {
    driver.InitializeScanner();
    FAIL() << "no failure";
  } catch (const CXOtherException& failure) {
    EXPECT_EQ(failure.GetErrorNumber(), -201);
  }
  EXPECT_FALSE(driver.m_bInitialized);
}

TEST_F(Opening, DataThatTheEngineRefusesStopItAndTheNextOneSucceeds) {
  bench.set_faults("CalibrateSetData call 1 fails with -5");
  EXPECT_EQ(failure_of([&] { driver.InitializeScanner(); }).number, -5);
  EXPECT_FALSE(driver.m_bInitialized);
  EXPECT_EQ(driver.InitializeScanner(), 0UL);
}

TEST_F(Opening, ANewCalibrationIsBuiltBeforeTheOldOneGoes) {
  open();
  const auto* const old = driver.m_pCalibration.get().get();
  driver.UninitializeScanner();
  bench.clear_journal();
  EXPECT_EQ(driver.InitializeScanner(), 0UL);
  EXPECT_NE(driver.m_pCalibration.get().get(), old);
  EXPECT_EQ(functions().back(), "CalibrateDelete");
}

TEST_F(Opening, AFailedOneKeepsTheOldCalibration) {
  open();
  const auto old = driver.m_pCalibration.get();
  driver.UninitializeScanner();
  bench.set_faults("CalibrateSetData fails with -5");
  failure_of([&] { driver.InitializeScanner(); });
  EXPECT_EQ(driver.m_pCalibration.get(), old);
}

TEST_F(Opening, TheChannelsWayGives0OnSuccess) {
  EXPECT_EQ(driver.InitializeSDK(driver.channel()), 0UL);
  EXPECT_TRUE(driver.m_bInitialized);
}

TEST_F(Opening, TheChannelsWayIsRefusedWithTheDevicesNumberAndNotWithTheResult) {
  bench.unplug_all();
  bench.set_faults("ftrScanGetLastError answers 55");
  EXPECT_EQ(failure_of([&] { driver.InitializeSDK(driver.channel()); }),
            (Failure{55, "Failed to initialize KR9-scanner."}));
}

}  // namespace
}  // namespace Osv::lx
