#include <algorithm>

#include "client/client_fixture.h"

namespace Osv::client {
namespace {

using ::testing::ElementsAre;

constexpr char kBadIndex[] = "The device index out of range or is not supported by frame grabber";

simulator::Device device(const std::string& serial) {
  simulator::Device made;
  made.serial = serial;
  made.seed = static_cast<unsigned char>(serial.back());
  return made;
}

/// Scanners at interfaces 2 and 5, and between them devices that are none of the family.
class ScannerChoice : public ClientTest {
 protected:
  ScannerChoice() {
    bench.unplug_all();
    bench.plug_in(2, device("SCANNER2"));
    simulator::Device stranger = device("STRANGER");
    stranger.model = 2;
    bench.plug_in(3, stranger);
    simulator::Device blank = device("NOBLOCK4");
    blank.memory = simulator::eMemory::Blank;
    bench.plug_in(4, blank);
    bench.plug_in(5, device("SCANNER5"));
  }

  std::vector<DeviceInfo> list() {
    unsigned long count = 0;
    grabber->AvailableDevices(nullptr, count);
    std::vector<DeviceInfo> devices(count);
    EXPECT_EQ(grabber->AvailableDevices(devices.data(), count), 0U);
    return devices;
  }

  /// The strings of the scanner's description.
  std::vector<std::string> info() {
    unsigned long size = 0;
    grabber->GetInfo(nullptr, size);
    std::string text(size, 'x');
    EXPECT_EQ(grabber->GetInfo(text.data(), size), 0U);
    std::vector<std::string> parts;
    for (std::size_t at = 0; at < text.size() && text[at] != '\0'; at += parts.back().size() + 1) {
      parts.emplace_back(text.c_str() + at);
    }
    return parts;
  }

  unsigned long active() {
    unsigned long index = 77;
    EXPECT_EQ(grabber->GetActiveDevice(index), 0U);
    return index;
  }
};

TEST_F(ScannerChoice, TheListHasTheScannersOfTheFamilyInTheOrderOfTheirInterfaces) {
  const std::vector<DeviceInfo> devices = list();
  ASSERT_EQ(devices.size(), 2U);
  EXPECT_EQ(devices[0].nInterface, 2U);
  EXPECT_EQ(devices[1].nInterface, 5U);
}

TEST_F(ScannerChoice, ARecordHas8BytesOfSerialNumberAndZerosBehind) {
  const DeviceInfo record = list().front();
  const std::string serial(record.szSerialNumber, 8);
  EXPECT_EQ(serial, "SCANNER2");
  EXPECT_TRUE(std::all_of(record.szSerialNumber + 8, record.szReserved + sizeof(record.szReserved),
                          [](char byte) { return byte == 0; }));
}

TEST_F(ScannerChoice, AListThatIsTooSmallGetsTheNumberOfScanners) {
  DeviceInfo record{};
  unsigned long count = 1;
  EXPECT_EQ(grabber->AvailableDevices(&record, count), 0x10000011U);
  EXPECT_EQ(count, 2U);
  EXPECT_EQ(record.nInterface, 0U);
}

TEST_F(ScannerChoice, ANullListIsRefused) {
  unsigned long count = 2;
  EXPECT_EQ(grabber->AvailableDevices(nullptr, count), 0x1000003CU);
}

TEST_F(ScannerChoice, ListingLeavesEveryDeviceClosed) {
  list();
  for (const unsigned int interface : {2U, 3U, 4U, 5U}) {
    EXPECT_EQ(bench.state(interface).open_handles, 0U);
  }
}

TEST_F(ScannerChoice, WithoutAChoiceTheFirstOfTheListIsTaken) {
  EXPECT_THAT(info(), ElementsAre("Ostrevan KR9 scanner", "SCANNER2", "2.1", "3.4.5"));
  EXPECT_EQ(active(), 2U);
}

TEST_F(ScannerChoice, AChoiceMakesItsInterfaceTheLibrarysBase) {
  EXPECT_EQ(grabber->SetActiveDevice(5), 0U);
  EXPECT_EQ(active(), 5U);
  EXPECT_EQ(bench.base_interface(), 5);
}

TEST_F(ScannerChoice, TheDescriptionIsThatOfTheChosenScannerWhereTheListBeginsAtTheBase) {
  bench.list_from_base(true);
  ASSERT_EQ(grabber->SetActiveDevice(5), 0U);
  EXPECT_EQ(info()[1], "SCANNER5");
}

TEST_F(ScannerChoice, TheDescriptionStaysThatOfTheFirstScannerAfterAnotherChoice) {
  bench.list_from_base(true);
  ASSERT_EQ(info()[1], "SCANNER2");
  ASSERT_EQ(grabber->SetActiveDevice(5), 0U);
  EXPECT_EQ(info()[1], "SCANNER2");
}

TEST_F(ScannerChoice, ADescriptionWhoseSerialNumberFailsIsTheNameAloneAtTheNextCall) {
  ASSERT_EQ(grabber->SetActiveDevice(2), 0U);
  bench.set_faults("ftrScanGetSerialNumber call 1 fails with 6");
  unsigned long size = 0;
  EXPECT_EQ(grabber->GetInfo(nullptr, size), 0x10000006U);
  EXPECT_EQ(last_text(), "Could not read the serial number of the scanner.");
  EXPECT_THAT(info(), ElementsAre("Ostrevan KR9 scanner"));
}

TEST_F(ScannerChoice, ADeviceThatIsNoScannerOfTheFamilyIsRefusedAndTheChoiceStays) {
  ASSERT_EQ(grabber->SetActiveDevice(5), 0U);
  for (const unsigned long index : {0UL, 3UL, 4UL, 127UL, 128UL}) {
    EXPECT_EQ(grabber->SetActiveDevice(index), 0x1000001BU) << index;
    EXPECT_EQ(last_text(), kBadIndex);
  }
  EXPECT_EQ(active(), 5U);
}

TEST_F(ScannerChoice, ChoosingWhatIsChosenTouchesNothing) {
  ASSERT_EQ(grabber->SetActiveDevice(2), 0U);
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live));
  EXPECT_EQ(grabber->SetActiveDevice(2), 0U);
  EXPECT_TRUE(recorder.wait_for_more(eEvent::Live, 2));
}

TEST_F(ScannerChoice, ANewChoiceStopsCapture) {
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live));
  EXPECT_EQ(grabber->SetActiveDevice(5), 0U);
  EXPECT_EQ(recorder.kinds().back(), eEvent::Stop);
  recorder.clear();
  EXPECT_EQ(start(eCaptureLive), 0U);
  EXPECT_TRUE(recorder.wait_for(eEvent::Live));
}

TEST_F(ScannerChoice, AnIndexBeyondAllInterfacesIsRefusedAndCaptureGoesOn) {
  ASSERT_EQ(start(eCaptureLive), 0U);
  EXPECT_EQ(grabber->SetActiveDevice(0x80000000UL), 0x1000001BU);
  EXPECT_EQ(last_text(), kBadIndex);
  EXPECT_TRUE(recorder.wait_for_more(eEvent::Live, 2));
}

TEST_F(ScannerChoice, AFailedChoiceStopsCaptureAndClosesTheScanner) {
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live));
  EXPECT_EQ(grabber->SetActiveDevice(3), 0x1000001BU);
  EXPECT_EQ(recorder.kinds().back(), eEvent::Stop);
  EXPECT_EQ(bench.state(2).open_handles, 0U);
}

}  // namespace
}  // namespace Osv::client
