#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "driver/device/device_fixture.h"

namespace Osv::testing_support {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::Values;
using ::testing::WithParamInterface;

class ScannerList : public DeviceTest {
 protected:
  /// The interface numbers of the list.
  std::vector<unsigned int> interfaces() {
    m_device.GetKR9ScannerList(m_list);
    std::vector<unsigned int> numbers;
    std::transform(m_list.begin(), m_list.end(), std::back_inserter(numbers),
                   [](const DeviceInfo& info) { return info.nInterface; });
    return numbers;
  }

  std::vector<DeviceInfo> m_list;
};

TEST_F(ScannerList, WithNoDeviceAttachedIsEmptyAndRaisesNothing) {
  bench.unplug_all();
  EXPECT_THAT(interfaces(), IsEmpty());
}

TEST_F(ScannerList, ForgetsWhatStoodInItBefore) {
  m_list.resize(3);
  EXPECT_THAT(interfaces(), ElementsAre(0));
}

TEST_F(ScannerList, IsEmptyWithoutAnErrorWhenTheInterfacesCantBeRead) {
  m_list.resize(3);
  bench.set_faults("ftrScanGetInterfaces fails with 5");
  EXPECT_THAT(interfaces(), IsEmpty());
}

TEST_F(ScannerList, HasTheScannersInTheOrderOfTheirInterfacesUpTo127) {
  bench.plug_in(127, simulator::Device());
  bench.plug_in(64, simulator::Device());
  EXPECT_THAT(interfaces(), ElementsAre(0, 64, 127));
}

TEST_F(ScannerList, TakesEveryStatusOtherThan0ForNoDevice) {
  m_device.table().ftrScanGetInterfaces = [](ftrScanInterfaceList* list) {
    list->fill(-1);
    (*list)[0] = 1;
    return 1;
  };
  EXPECT_THAT(interfaces(), IsEmpty());
}

TEST_F(ScannerList, HasTheEightBytesOfTheSerialNumberAndZerosBehind) {
  simulator::Device device;
  device.serial = std::string("AB\0DEFGH", 8);
  bench.plug_in(0, device);
  m_device.GetKR9ScannerList(m_list);
  std::string bytes = device.serial;
  bytes.resize(sizeof(DeviceInfo::szSerialNumber) + sizeof(DeviceInfo::szReserved));
  ASSERT_EQ(m_list.size(), 1U);
  EXPECT_THAT(std::string(m_list[0].szSerialNumber, bytes.size()), ElementsAreArray(bytes));
}

TEST_F(ScannerList, NeedsNoLogLineButTheOneOfLoading) {
  bench.plug_in(1, {.memory = simulator::eMemory::Blank});
  EXPECT_THAT(lines_of([&] { interfaces(); }),
              ElementsAre("level 7, 'ClFutronicBaseSDK::Initialize load KR9 library'"));
}

TEST_F(ScannerList, LeavesAnOpenDeviceAlone) {
  EXPECT_TRUE(m_device.Initialize());
  interfaces();
  EXPECT_NE(m_device.ftrHandle, nullptr);
  EXPECT_EQ(bench.state(0).open_handles, 1U);
}

/// A fault that keeps the second of three scanners out of the list.
struct LeftOut {
  const char* why;
  const char* fault;
};

class ScannerListWithAFault : public ScannerList, public WithParamInterface<LeftOut> {
 protected:
  ScannerListWithAFault() {
    bench.plug_in(1, simulator::Device());
    bench.plug_in(2, simulator::Device());
    bench.set_faults(GetParam().fault);
  }
};

TEST_P(ScannerListWithAFault, LeavesTheDeviceOutInSilenceAndGoesOn) {
  m_device.OpenLibrary();
  EXPECT_THAT(lines_of([&] { EXPECT_THAT(interfaces(), ElementsAre(0, 2)); }), IsEmpty());
}

TEST_P(ScannerListWithAFault, ClosesEachDeviceThatItHasOpened) {
  interfaces();
  for (const unsigned int interface : {0U, 1U, 2U}) {
    EXPECT_EQ(bench.state(interface).open_handles, 0U);
  }
}

INSTANTIATE_TEST_SUITE_P(
    OfOneDevice, ScannerListWithAFault,
    Values(LeftOut{"CantBeOpened", "ftrScanOpenDeviceOnInterface call 2 gives a null handle"},
           LeftOut{"TellsNoModel", "ftrScanGetDeviceInfo call 2 fails with 5"},
           LeftOut{"HasNoCalibrationBlock", "ftrScanGetExtMemorySize call 2 gives 0"},
           LeftOut{"GivesNoSerialNumber", "ftrScanGetSerialNumber call 2 fails with 5"}),
    [](const auto& device) { return device.param.why; });

TEST_F(ScannerList, AsksNoSerialNumberOfAForeignDevice) {
  bench.plug_in(0, {.model = 2});
  EXPECT_THAT(calls_of([&] { interfaces(); }),
              ElementsAre("ftrScanGetInterfaces(buffer) = 1",
                          "ftrScanOpenDeviceOnInterface(interface 0) = handle 1",
                          "ftrScanGetDeviceInfo(handle 1, buffer) = 1",
                          "ftrScanCloseDevice(handle 1) = 1"));
}

TEST_F(ScannerList, ClosesNothingThatCouldNotBeOpened) {
  bench.set_faults("ftrScanOpenDeviceOnInterface gives a null handle");
  EXPECT_THAT(calls_of([&] { interfaces(); }),
              ElementsAre("ftrScanGetInterfaces(buffer) = 1",
                          "ftrScanOpenDeviceOnInterface(interface 0) = null"));
}

TEST_F(ScannerList, IsEmptyWithALibraryThatLacksTheExtendedMemory) {
  m_libraries.leave_out(kScannerLibrary, "ftrScanGetExtMemorySize");
  EXPECT_THAT(interfaces(), IsEmpty());
}

TEST_F(ScannerList, AttachedInterfacesAreThoseOfAnyDevice) {
  bench.plug_in(3, {.model = 2});
  std::vector<int> numbers = {99};
  EXPECT_TRUE(m_device.AttachedInterfaces(numbers));
  EXPECT_EQ(numbers, (std::vector<int>{0, 3}));
}

TEST_F(ScannerList, AttachedInterfacesFailWhenTheLibraryDoesNotTell) {
  bench.set_faults("ftrScanGetInterfaces fails with 5");
  std::vector<int> numbers = {99};
  EXPECT_FALSE(m_device.AttachedInterfaces(numbers));
  EXPECT_TRUE(numbers.empty());
}

}  // namespace
}  // namespace Osv::testing_support
