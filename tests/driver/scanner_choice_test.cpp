#include <gtest/gtest.h>

#include <array>

#include "driver/driver_fixture.h"

namespace Osv::lx {
namespace {

using ::testing::IsEmpty;

const Failure kIndexRefused = {
    27, "The device index out of range or is not supported by frame grabber"};

/// Scanners at 0 and 5, a device of another family at 7.
class ScannerChoice : public DriverFixture {
 protected:
  ScannerChoice() {
    bench.plug_in(5, {.serial = "HVK30005"});
    bench.plug_in(7, {.serial = "OTHER007", .model = 2});
    bench.list_from_base(true);
  }

  void start_capture() {
    ASSERT_EQ(driver.StartCapture(1, 1, eCaptureLive, nullptr, nullptr, nullptr, nullptr, nullptr),
              0UL);
  }
};

TEST_F(ScannerChoice, ANewIndexIsOpenedAtOnce) {
  EXPECT_EQ(driver.SetActiveScanner(5), 0UL);
  EXPECT_EQ(driver.m_nActiveScanner, 5U);
  EXPECT_TRUE(driver.m_bInitialized);
  EXPECT_EQ(bench.state(5).open_handles, 1U);
}

TEST_F(ScannerChoice, AChangeClosesTheOldScannerFirst) {
  open();
  EXPECT_EQ(driver.SetActiveScanner(5), 0UL);
  EXPECT_EQ(bench.state(0).open_handles, 0U);
  EXPECT_EQ(functions()[0], "ftrScanSetDiodesStatus");
  EXPECT_EQ(functions()[1], "ftrScanCloseDevice");
}

TEST_F(ScannerChoice, AChangeStopsCapture) {
  start_capture();
  EXPECT_EQ(driver.SetActiveScanner(5), 0UL);
  EXPECT_FALSE(driver.channel().m_bRunning);
}

TEST_F(ScannerChoice, TheChosenIndexChangesNothing) {
  open();
  EXPECT_EQ(driver.SetActiveScanner(0), 0UL);
  EXPECT_THAT(story(), IsEmpty());
}

TEST_F(ScannerChoice, TheChosenIndexOpensNothingWhileTheScannerIsClosed) {
  open();
  driver.UninitializeScanner();
  bench.clear_journal();
  EXPECT_EQ(driver.SetActiveScanner(0), 0UL);
  EXPECT_THAT(story(), IsEmpty());
  EXPECT_FALSE(driver.m_bInitialized);
}

TEST_F(ScannerChoice, AnIndexOf0x80000000IsRefusedWithCaptureLeftRunning) {
  start_capture();
  EXPECT_EQ(failure_of([&] { driver.SetActiveScanner(0x80000000); }), kIndexRefused);
  EXPECT_TRUE(driver.channel().m_bRunning);
  EXPECT_TRUE(driver.m_bInitialized);
  driver.StopCapture(1);
}

TEST_F(ScannerChoice, TheMarkOfNoScannerIsRefusedEvenWhileNoneIsChosen) {
  EXPECT_EQ(failure_of([&] { driver.SetActiveScanner(0xFFFFFFFF); }), kIndexRefused);
  EXPECT_EQ(failure_of([&] { driver.SetActiveScanner(0x100000000); }), kIndexRefused);
  EXPECT_THAT(functions(), IsEmpty());
}

TEST_F(ScannerChoice, ADeviceOfAnotherFamilyIsRefusedWithCaptureStoppedAndTheScannerClosed) {
  start_capture();
  EXPECT_EQ(failure_of([&] { driver.SetActiveScanner(7); }), kIndexRefused);
  EXPECT_FALSE(driver.channel().m_bRunning);
  EXPECT_FALSE(driver.m_bInitialized);
  EXPECT_EQ(bench.state(0).open_handles, 0U);
}

TEST_F(ScannerChoice, ARefusedIndexLeavesTheOldOneChosen) {
  open();
  failure_of([&] { driver.SetActiveScanner(7); });
  EXPECT_EQ(driver.m_nActiveScanner, 0U);
  EXPECT_EQ(driver.InitializeScanner(), 0UL);
}

TEST_F(ScannerChoice, AnInterfaceWithoutADeviceIsRefused) {
  EXPECT_EQ(failure_of([&] { driver.SetActiveScanner(3); }), kIndexRefused);
}

TEST_F(ScannerChoice, Errors259And2OnSelectionAreRefusedAsAnIndex) {
  for (const char* error : {"259", "2"}) {
    bench.set_faults(std::string("ftrSetBaseInterface fails with ") + error);
    EXPECT_EQ(failure_of([&] { driver.SetActiveScanner(5); }), kIndexRefused);
  }
}

TEST_F(ScannerChoice, AnyOtherErrorOnSelectionIsRefusedWithItsNumber) {
  bench.set_faults("ftrSetBaseInterface fails with 55");
  EXPECT_EQ(failure_of([&] { driver.SetActiveScanner(5); }),
            (Failure{55, "SetActiveScanner failed"}));
  EXPECT_EQ(driver.m_nActiveScanner, Driver::kNoActiveScanner);
}

TEST_F(ScannerChoice, AnOpeningThatFailsLeavesTheNewIndexChosenAndClosed) {
  open();
  bench.set_faults("ftrScanSetOptions call 1 fails with 55");
  EXPECT_EQ(failure_of([&] { driver.SetActiveScanner(5); }).number, 55);
  EXPECT_EQ(driver.m_nActiveScanner, 5U);
  EXPECT_FALSE(driver.m_bInitialized);
  EXPECT_EQ(driver.InitializeScanner(), 0UL);
}

TEST_F(ScannerChoice, TheActiveScannerIsTheInterfaceChosenLast) {
  unsigned long index = 99;
  EXPECT_TRUE(driver.GetActiveScanner(index));
  EXPECT_EQ(index, 0UL);
  driver.SetActiveScanner(5);
  EXPECT_TRUE(driver.GetActiveScanner(index));
  EXPECT_EQ(index, 5UL);
}

TEST_F(ScannerChoice, AskingForTheActiveScannerTouchesNothing) {
  unsigned long index = 0;
  driver.GetActiveScanner(index);
  EXPECT_THAT(story(), IsEmpty());
}

/// Scanners at 0 and 5.
class ScannerList : public DriverFixture {
 protected:
  ScannerList() { bench.plug_in(5, {.serial = "HVK30005"}); }

  std::array<DeviceInfo, 3> list{};
};

TEST_F(ScannerList, ANullListOfCountZeroAsksForTheNumber) {
  unsigned long count = 0;
  EXPECT_EQ(driver.AvailableScanners(nullptr, count), 17UL);
  EXPECT_EQ(count, 2UL);
}

TEST_F(ScannerList, ACountTooSmallIsRaisedAndTheListLeftAlone) {
  unsigned long count = 1;
  list[0].nInterface = 99;
  EXPECT_EQ(driver.AvailableScanners(list.data(), count), 17UL);
  EXPECT_EQ(count, 2UL);
  EXPECT_EQ(list[0].nInterface, 99U);
}

TEST_F(ScannerList, ALargeEnoughListIsFilledInTheOrderOfInterfaces) {
  unsigned long count = list.size();
  EXPECT_EQ(driver.AvailableScanners(list.data(), count), 0UL);
  EXPECT_EQ(count, 2UL);
  EXPECT_EQ(list[0].nInterface, 0U);
  EXPECT_STREQ(list[0].szSerialNumber, "HVK30001");
  EXPECT_EQ(list[1].nInterface, 5U);
  EXPECT_STREQ(list[1].szSerialNumber, "HVK30005");
}

TEST_F(ScannerList, ANullListOfSufficientCountGives60BeforeAnyCall) {
  unsigned long count = 2;
  EXPECT_EQ(driver.AvailableScanners(nullptr, count), 60UL);
  EXPECT_EQ(count, 2UL);
  EXPECT_THAT(functions(), IsEmpty());
}

TEST_F(ScannerList, WithoutScannersANullListOfCountZeroIsGood) {
  bench.unplug_all();
  unsigned long count = 0;
  EXPECT_EQ(driver.AvailableScanners(nullptr, count), 0UL);
  EXPECT_EQ(count, 0UL);
}

TEST_F(ScannerList, ListingLeavesNoDeviceOpen) {
  unsigned long count = list.size();
  driver.AvailableScanners(list.data(), count);
  EXPECT_FALSE(driver.m_bInitialized);
  EXPECT_EQ(bench.state(0).open_handles, 0U);
  EXPECT_EQ(driver.m_nActiveScanner, Driver::kNoActiveScanner);
}

}  // namespace
}  // namespace Osv::lx
