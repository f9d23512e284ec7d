#include <gmock/gmock.h>

#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "driver/device/device_fixture.h"
#include "driver/support/loader_journal.h"
#include "foundation/exceptions.h"
#include "support/failure_of.h"

namespace Osv::testing_support {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using DeviceLifecycle = DeviceTest;
using OpenDeviceLifecycle = OpenDeviceTest;

TEST_F(DeviceLifecycle, ConstructionLoadsNoLibraryAndOpensNothing) {
  EXPECT_THAT(m_libraries.openings(), IsEmpty());
  EXPECT_EQ(m_device.ApiLevel(), 0);
  EXPECT_EQ(m_device.ftrHandle, nullptr);
  EXPECT_THAT(journal(), IsEmpty());
}

TEST_F(DeviceLifecycle, ConstructionStartsWithEverythingAtZero) {
  unsigned long interfaceNumber = 5;
  EXPECT_TRUE(m_device.GetScanInterface(interfaceNumber));
  EXPECT_EQ(interfaceNumber, 0UL);
  EXPECT_EQ(m_device.m_nReadPos, 0UL);
  EXPECT_EQ(m_device.m_nWritePos, 0UL);
  EXPECT_FALSE(m_device.StateGreenLED());
  EXPECT_FALSE(m_device.StateRedLED());
  EXPECT_EQ(m_device.m_sLogFileName, "LogFileName");
}

TEST_F(DeviceLifecycle, ConstructionAndDestructionAreLogged) {
  EXPECT_THAT(lines_of([] { const DeviceProbe device; }),
              ElementsAre("level 7, 'ClFutronicBaseSDK is constructed'",
                          "level 7, 'ClFutronicBaseSDK is distroyed'"));
}

TEST_F(DeviceLifecycle, OpenLibraryLoadsItOnceAndLogsThatOnce) {
  const Words lines = lines_of([&] {
    m_device.OpenLibrary();
    m_device.OpenLibrary();
  });
  EXPECT_THAT(lines, ElementsAre("level 7, 'ClFutronicBaseSDK::Initialize load KR9 library'"));
  EXPECT_EQ(m_device.ApiLevel(), 1);
}

TEST_F(DeviceLifecycle, TwoThreadsThatNeedTheLibraryAtOnceLoadItOnce) {
  LoaderJournal loader;
  const std::thread::id first = std::this_thread::get_id();
  std::thread second;
  std::promise<void> waits;  // also kept when the second thread loads: that is the failure
  loader.before_opening([&] {
    if (std::this_thread::get_id() != first) {
      waits.set_value();
      return;
    }
    second = std::thread([&] {
      const WaitNotice notice([&] { waits.set_value(); });
      m_device.OpenLibrary();
    });
    waits.get_future().wait();
  });
  m_device.OpenLibrary();
  second.join();
  EXPECT_EQ(loader.opened().size(), 1U);
}

TEST_F(DeviceLifecycle, TheLogLineOfLoadingComesBeforeAFailedLoad) {
  m_libraries.make_absent(kScannerLibrary);
  EXPECT_THAT(lines_of([&] { EXPECT_THROW(m_device.OpenLibrary(), CXOtherException); }),
              ElementsAre("level 7, 'ClFutronicBaseSDK::Initialize load KR9 library'"));
}

TEST_F(DeviceLifecycle, EveryFirstNeedOfAMissingLibraryFailsWithMinus201) {
  m_libraries.make_absent(kScannerLibrary);
  std::vector<DeviceInfo> list;
  const auto number_of = [](auto action) {
    return failure_of<CXOtherException>(action).GetErrorNumber();
  };
  EXPECT_EQ(number_of([&] { (void)m_device.Initialize(); }), -201);
  EXPECT_EQ(number_of([&] { m_device.GetKR9ScannerList(list); }), -201);
  EXPECT_EQ(number_of([&] { m_device.IsKR9Scanner(0); }), -201);
  EXPECT_EQ(number_of([&] { (void)m_device.SetScanInterface(0); }), -201);
  EXPECT_EQ(number_of([&] { (void)m_device.GetLastError(); }), -201);
}

TEST_F(DeviceLifecycle, ALibraryThatWasMissingIsLoadedAtTheNextNeed) {
  m_libraries.make_absent(kScannerLibrary);
  EXPECT_THROW((void)m_device.Initialize(), CXOtherException);
  m_libraries.use_plain(kScannerLibrary);
  EXPECT_TRUE(m_device.Initialize());
}

TEST_F(DeviceLifecycle, InitializeListsTheScannersAndOpensTheFirst) {
  EXPECT_THAT(calls_of([&] { EXPECT_TRUE(m_device.Initialize()); }),
              ElementsAre("ftrScanGetInterfaces(buffer) = 1",
                          "ftrScanOpenDeviceOnInterface(interface 0) = handle 1",
                          "ftrScanGetDeviceInfo(handle 1, buffer) = 1",
                          "ftrScanGetExtMemorySize(handle 1, buffer) = 1",
                          "ftrScanRestoreExtMemory(handle 1, buffer, offset 0, size 46) = 1",
                          "ftrScanGetSerialNumber(handle 1, buffer) = 1",
                          "ftrScanCloseDevice(handle 1) = 1",
                          "ftrScanOpenDeviceOnInterface(interface 0) = handle 2"));
}

TEST_F(DeviceLifecycle, InitializeLogsItsSteps) {
  EXPECT_THAT(lines_of([&] { EXPECT_TRUE(m_device.Initialize()); }),
              ElementsAre("level 7, 'ClFutronicBaseSDK::Initialize is called'",
                          "level 7, 'ClFutronicBaseSDK::Initialize load KR9 library'",
                          "level 7, 'ClFutronicBaseSDK::Initialize, ScanOpenDevice'",
                          "level 7, 'ClFutronicBaseSDK::Initialize device opened'"));
}

TEST_F(DeviceLifecycle, InitializeWithoutAScannerIsFalseAndSaysSo) {
  m_device.OpenLibrary();
  bench.unplug_all();
  EXPECT_THAT(lines_of([&] { EXPECT_FALSE(m_device.Initialize()); }),
              ElementsAre("level 7, 'ClFutronicBaseSDK::Initialize is called'",
                          "level 7, 'ClFutronicBaseSDK::Initialize, ScanOpenDevice'",
                          "level 7, 'ClFutronicBaseSDK::Initialize No device attached'",
                          "level 7, 'ClFutronicBaseSDK::Initialize unable to open any device'"));
}

TEST_F(DeviceLifecycle, InitializeWithAListedScannerThatCantBeOpenedIsFalseAndSaysSo) {
  m_device.OpenLibrary();
  bench.set_faults("ftrScanOpenDeviceOnInterface call 2 gives a null handle");
  EXPECT_THAT(lines_of([&] { EXPECT_FALSE(m_device.Initialize()); }),
              ElementsAre("level 7, 'ClFutronicBaseSDK::Initialize is called'",
                          "level 7, 'ClFutronicBaseSDK::Initialize, ScanOpenDevice'",
                          "level 7, 'ClFutronicBaseSDK::Initialize unable to open any device'"));
}

TEST_F(DeviceLifecycle, InitializeTriesTheScannersInTheirOrderUntilOneOpens) {
  bench.plug_in(3, simulator::Device());
  bench.plug_in(5, simulator::Device());
  bench.set_faults("ftrScanOpenDeviceOnInterface call 4 gives a null handle");
  EXPECT_TRUE(m_device.Initialize());
  const Words openings = journal("ftrScanOpenDeviceOnInterface");
  EXPECT_THAT(Words(openings.begin() + 3, openings.end()),
              ElementsAre("ftrScanOpenDeviceOnInterface(interface 0) = null",
                          "ftrScanOpenDeviceOnInterface(interface 3) = handle 4"));
}

TEST_F(DeviceLifecycle, InitializeOpensTheFirstScannerWhicheverInterfaceWasChosen) {
  bench.plug_in(5, simulator::Device());
  EXPECT_TRUE(m_device.SetScanInterface(5));
  EXPECT_TRUE(m_device.Initialize());
  EXPECT_EQ(journal("ftrScanOpenDeviceOnInterface").back(),
            "ftrScanOpenDeviceOnInterface(interface 0) = handle 3");
}

TEST_F(OpenDeviceLifecycle, InitializeClosesTheOpenDeviceFirst) {
  const Words calls = calls_of([&] { EXPECT_TRUE(m_device.Initialize()); });
  EXPECT_THAT(Words(calls.begin(), calls.begin() + 3),
              ElementsAre("ftrScanSetDiodesStatus(handle 2, green 0, red 0) = 1",
                          "ftrScanCloseDevice(handle 2) = 1", "ftrScanGetInterfaces(buffer) = 1"));
  EXPECT_EQ(bench.state(0).open_handles, 1U);
}

TEST_F(OpenDeviceLifecycle, AFailedInitializeLeavesNoDeviceOpen) {
  bench.unplug_all();
  EXPECT_FALSE(m_device.Initialize());
  EXPECT_EQ(m_device.ftrHandle, nullptr);
}

TEST_F(OpenDeviceLifecycle, InitializeLeavesBothMemoryPositionsAtZero) {
  m_device.m_nReadPos = 46;
  m_device.m_nWritePos = 7;
  EXPECT_TRUE(m_device.Initialize());
  EXPECT_EQ(m_device.m_nReadPos, 0UL);
  EXPECT_EQ(m_device.m_nWritePos, 0UL);
}

TEST_F(OpenDeviceLifecycle, DestroySwitchesTheLEDsOffAndCloses) {
  EXPECT_THAT(calls_of([&] { m_device.Destroy(); }),
              ElementsAre("ftrScanSetDiodesStatus(handle 2, green 0, red 0) = 1",
                          "ftrScanCloseDevice(handle 2) = 1"));
  EXPECT_EQ(m_device.ftrHandle, nullptr);
}

TEST_F(OpenDeviceLifecycle, DestroyIsLogged) {
  EXPECT_THAT(lines_of([&] { m_device.Destroy(); }),
              ElementsAre("level 7, 'ClFutronicBaseSDK::Destroy close device'"));
}

TEST_F(OpenDeviceLifecycle, DestroyLeavesBothMemoryPositionsAtZero) {
  m_device.m_nReadPos = 46;
  m_device.m_nWritePos = 7;
  m_device.Destroy();
  EXPECT_EQ(m_device.m_nReadPos, 0UL);
  EXPECT_EQ(m_device.m_nWritePos, 0UL);
}

TEST_F(OpenDeviceLifecycle, DestroyKeepsTheRememberedLEDs) {
  EXPECT_TRUE(m_device.SwitchGreenLED(true));
  m_device.Destroy();
  EXPECT_TRUE(m_device.StateGreenLED());
}

TEST_F(OpenDeviceLifecycle, DestroyWithoutADeviceDoesNothing) {
  m_device.Destroy();
  EXPECT_THAT(calls_of([&] { m_device.Destroy(); }), IsEmpty());
}

TEST_F(DeviceLifecycle, DestroyWithoutALibraryDoesNothing) {
  EXPECT_THAT(lines_of([&] { m_device.Destroy(); }), IsEmpty());
  EXPECT_EQ(m_device.m_pApiLib.get(), nullptr);
}

TEST_F(OpenDeviceLifecycle, UnitializeClosesAsDestroyDoes) {
  EXPECT_THAT(calls_of([&] { m_device.Unitialize(); }),
              ElementsAre("ftrScanSetDiodesStatus(handle 2, green 0, red 0) = 1",
                          "ftrScanCloseDevice(handle 2) = 1"));
}

TEST_F(DeviceLifecycle, DestructionClosesTheDeviceAndThenTheLibrary) {
  LoaderJournal loader;  // no log in this test: its library would be closed too
  auto device = std::make_unique<DeviceProbe>();
  EXPECT_TRUE(device->Initialize());
  std::vector<unsigned int> handlesAtClosings;
  loader.before_closing([&] { handlesAtClosings.push_back(bench.state(0).open_handles); });
  EXPECT_THAT(calls_of([&] { device.reset(); }),
              ElementsAre("ftrScanSetDiodesStatus(handle 2, green 0, red 0) = 1",
                          "ftrScanCloseDevice(handle 2) = 1"));
  EXPECT_THAT(handlesAtClosings, ElementsAre(0U));
}

TEST_F(DeviceLifecycle, DestructionIsLoggedBeforeTheDeviceIsClosed) {
  auto device = std::make_unique<DeviceProbe>();
  EXPECT_TRUE(device->Initialize());
  EXPECT_THAT(lines_of([&] { device.reset(); }),
              ElementsAre("level 7, 'ClFutronicBaseSDK is distroyed'",
                          "level 7, 'ClFutronicBaseSDK::Destroy close device'"));
}

TEST_F(DeviceLifecycle, TheLibraryStaysLoadedAcrossScannerSelections) {
  const LoaderJournal loader;
  EXPECT_TRUE(m_device.SetScanInterface(0));
  EXPECT_TRUE(m_device.Initialize());
  EXPECT_TRUE(m_device.SetScanInterface(0));
  EXPECT_EQ(loader.opened().size(), 1U);
  EXPECT_EQ(loader.closed(), 0);
}

TEST_F(OpenDeviceLifecycle, SetScanInterfaceClosesTheDeviceWithoutSwitchingTheLEDsOff) {
  EXPECT_THAT(
      calls_of([&] { EXPECT_TRUE(m_device.SetScanInterface(5)); }),
      ElementsAre("ftrScanCloseDevice(handle 2) = 1", "ftrSetBaseInterface(interface 5) = 1"));
  EXPECT_EQ(m_device.ftrHandle, nullptr);
}

TEST_F(DeviceLifecycle, SetScanInterfaceNeedsNoOpenDevice) {
  EXPECT_THAT(calls_of([&] { EXPECT_TRUE(m_device.SetScanInterface(127)); }),
              ElementsAre("ftrSetBaseInterface(interface 127) = 1"));
  EXPECT_EQ(bench.base_interface(), 127);
}

TEST_F(DeviceLifecycle, SetScanInterfaceRemembersTheNumberOnSuccess) {
  unsigned long interfaceNumber = 0;
  EXPECT_TRUE(m_device.SetScanInterface(5));
  EXPECT_TRUE(m_device.GetScanInterface(interfaceNumber));
  EXPECT_EQ(interfaceNumber, 5UL);
}

TEST_F(OpenDeviceLifecycle, AFailedSetScanInterfaceKeepsTheNumberAndHasClosedTheDevice) {
  unsigned long interfaceNumber = 5;
  bench.set_faults("ftrSetBaseInterface fails with 259");
  EXPECT_FALSE(m_device.SetScanInterface(5));
  EXPECT_TRUE(m_device.GetScanInterface(interfaceNumber));
  EXPECT_EQ(interfaceNumber, 0UL);
  EXPECT_EQ(m_device.ftrHandle, nullptr);
}

}  // namespace
}  // namespace Osv::testing_support
