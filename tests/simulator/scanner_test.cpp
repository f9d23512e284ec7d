#include "libraries/scanner_api.h"

#include <algorithm>
#include <array>
#include <string>

#include "driver/calibration/calibration_header.h"
#include "simulator/images.h"
#include "support/simulator_fixture.h"

namespace Osv::simulator {
namespace {

constexpr std::uint32_t kNotSupported = 8;
constexpr std::uint32_t kInvalidParameter = 87;
constexpr std::uint32_t kNoDevice = 259;
constexpr std::uint32_t kNoFinger = 4306;
constexpr std::uint32_t kWrongCode = 0x20000006;
constexpr SevenBytes kCode = {1, 2, 3, 4, 5, 6, 7};
constexpr SevenBytes kSecret = {7, 0, 255, 4, 3, 2, 1};

class ScannerStandIn : public SimulatorFixture {
 protected:
  ScannerStandIn() : m_hScanner(ftrScanOpenDeviceOnInterface(0)) {}
  ~ScannerStandIn() override { ftrScanCloseDevice(m_hScanner); }

  std::vector<int> listed() {
    ftrScanInterfaceList list{};
    EXPECT_EQ(ftrScanGetInterfaces(&list), 1);
    std::vector<int> interfaces;
    for (std::size_t i = 0; i < list.status.size(); ++i) {
      if (list.status[i] == 0) {
        interfaces.push_back(static_cast<int>(i));
      }
    }
    return interfaces;
  }

  /// A failed call, and its error.
  static void expect_failure(int status, std::uint32_t error) {
    EXPECT_EQ(status, 0);
    EXPECT_EQ(ftrScanGetLastError(), error);
  }

  void* m_hScanner;
  SevenBytes m_aBytes = {};
};

/// A calibration block read back from bytes.
class ByteStream : public CXStream {
 public:
  explicit ByteStream(Bytes bytes) : m_vBytes(std::move(bytes)) {}
  void WriteRaw(const void*, unsigned long) override {}
  void ReadRaw(void* data, unsigned long count) override {
    std::copy_n(m_vBytes.begin(), count, static_cast<unsigned char*>(data));
  }

 private:
  Bytes m_vBytes;
};

TEST_F(ScannerStandIn, TheListShowsTheInterfacesWithDevices) {
  bench.plug_in(5, Device());
  bench.plug_in(127, Device());
  EXPECT_EQ(listed(), (std::vector<int>{0, 5, 127}));
}

TEST_F(ScannerStandIn, AListWithoutDevicesIsEmpty) {
  bench.unplug_all();
  EXPECT_TRUE(listed().empty());
}

TEST_F(ScannerStandIn, TheListDoesNotDependOnTheBaseInterface) {
  bench.plug_in(5, Device());
  EXPECT_EQ(ftrSetBaseInterface(5), 1);
  EXPECT_EQ(listed(), (std::vector<int>{0, 5}));
  EXPECT_EQ(bench.base_interface(), 5);
  EXPECT_EQ(ftrGetBaseInterfaceNumber(), 5);
}

TEST_F(ScannerStandIn, TheListBeginsAtTheBaseInterfaceWhenTheSceneSaysSo) {
  bench.plug_in(5, Device());
  bench.plug_in(9, Device());
  bench.list_from_base(true);
  ftrSetBaseInterface(5);
  EXPECT_EQ(listed(), (std::vector<int>{5, 9}));
}

TEST_F(ScannerStandIn, ABaseInterfaceThatDoesNotExistIsRefused) {
  expect_failure(ftrSetBaseInterface(128), kNoDevice);
  expect_failure(ftrSetBaseInterface(-1), kNoDevice);
  EXPECT_EQ(bench.base_interface(), 0);
}

TEST_F(ScannerStandIn, AnInterfaceWithoutADeviceGivesANullHandle) {
  for (const int interface : {1, -1, 128}) {
    EXPECT_EQ(ftrScanOpenDeviceOnInterface(interface), nullptr);
    EXPECT_EQ(ftrScanGetLastError(), kNoDevice);
  }
}

TEST_F(ScannerStandIn, SeveralHandlesOfOneDeviceMayBeOpen) {
  void* const second = ftrScanOpenDeviceOnInterface(0);
  EXPECT_NE(second, m_hScanner);
  EXPECT_EQ(bench.state(0).open_handles, 2U);
  ftrScanCloseDevice(m_hScanner);
  EXPECT_EQ(ftrScanSetOptions(second, 4, 4), 1);
  ftrScanCloseDevice(second);
  EXPECT_EQ(bench.state(0).open_handles, 0U);
}

TEST_F(ScannerStandIn, NullAndClosedHandlesFailWith259) {
  void* const closed = ftrScanOpenDeviceOnInterface(0);
  ftrScanCloseDevice(closed);
  for (void* const handle : {static_cast<void*>(nullptr), closed}) {
    expect_failure(ftrScanSetOptions(handle, 4, 4), kNoDevice);
    Bytes frame(std::size_t{kRawWidth} * kRawHeight);
    expect_failure(ftrScanGetImageByVariableDose(handle, 60, frame.data()), kNoDevice);
  }
}

TEST_F(ScannerStandIn, AHandleOfAnUnpluggedDeviceStaysDeadWhenItIsPluggedInAgain) {
  bench.unplug(0);
  expect_failure(ftrScanSetOptions(m_hScanner, 4, 4), kNoDevice);
  EXPECT_FALSE(bench.state(0).plugged_in);
  bench.plug_in_again(0);
  expect_failure(ftrScanSetOptions(m_hScanner, 4, 4), kNoDevice);
  void* const fresh = ftrScanOpenDeviceOnInterface(0);
  EXPECT_EQ(ftrScanSetOptions(fresh, 4, 4), 1);
  ftrScanCloseDevice(fresh);
}

TEST_F(ScannerStandIn, AHandleStaysDeadWhenAnotherDeviceTakesTheInterface) {
  bench.plug_in(0, Device());
  expect_failure(ftrScanSetOptions(m_hScanner, 4, 4), kNoDevice);
}

TEST_F(ScannerStandIn, PluggingInWhatWasNeverUnpluggedChangesNothing) {
  bench.plug_in_again(0);
  EXPECT_EQ(ftrScanSetOptions(m_hScanner, 4, 4), 1);
}

TEST_F(ScannerStandIn, AnUnpluggedDeviceKeepsItsMemoryAndLosesItsLight) {
  ftrScanSave7Bytes(m_hScanner, kSecret.data());
  ftrScanSetDiodesStatus(m_hScanner, 255, 255);
  bench.unplug(0);
  bench.plug_in_again(0);
  EXPECT_EQ(bench.state(0).control_bytes, kSecret);
  EXPECT_EQ(bench.state(0).green, 0);
  EXPECT_EQ(bench.state(0).red, 0);
}

TEST_F(ScannerStandIn, AnInterfaceThatDoesNotExistIsRefusedByTheBench) {
  EXPECT_THROW(bench.plug_in(128, Device()), std::out_of_range);
  EXPECT_THROW(bench.unplug(7), std::out_of_range);
  EXPECT_THROW((void)bench.memory(128), std::out_of_range);
}

TEST_F(ScannerStandIn, NullBuffersFailAndDoNoHarm) {
  void* const h = m_hScanner;
  const std::array statuses = {ftrScanGetOptions(h, nullptr),
                               ftrScanGetDeviceInfo(h, nullptr),
                               ftrScanGetImageSize(h, nullptr),
                               ftrScanGetFrame(h, nullptr, nullptr),
                               ftrScanGetBacklightImage(h, nullptr),
                               ftrScanGetDarkImage(h, nullptr),
                               ftrScanGetImage(h, 60, nullptr),
                               ftrScanGetImage2(h, 60, nullptr),
                               ftrScanGetImageByVariableDose(h, 60, nullptr),
                               ftrScanSave7Bytes(h, nullptr),
                               ftrScanRestore7ControlBytes(h, nullptr),
                               ftrScanGetDiodesStatus(h, nullptr, nullptr),
                               ftrScanGetInterfaces(nullptr),
                               ftrScanSaveSerialNumber(h, nullptr),
                               ftrScanGetSerialNumber(h, nullptr),
                               ftrScanGetExtMemorySize(h, nullptr),
                               ftrScanSaveExtMemory(h, nullptr, 0, 1),
                               ftrScanRestoreExtMemory(h, nullptr, 0, 1),
                               ftrScanGetVersion(h, nullptr),
                               ftrScanSetNewAuthorizationCode(h, nullptr),
                               ftrScanSaveSecret7Bytes(h, m_aBytes.data(), nullptr),
                               ftrScanRestoreSecret7Bytes(h, m_aBytes.data(), nullptr)};
  for (const int status : statuses) {
    EXPECT_EQ(status, 0);
  }
  for (const Call& call : bench.calls()) {
    EXPECT_TRUE(call.result != "0" || call.last_error == kInvalidParameter) << call.text();
  }
}

TEST_F(ScannerStandIn, OptionsChangeInTheBitsOfTheMask) {
  ftrScanSetOptions(m_hScanner, 0xFF, 0xF0);
  EXPECT_EQ(ftrScanSetOptions(m_hScanner, 4, 4), 1);
  std::uint32_t options = 0;
  EXPECT_EQ(ftrScanGetOptions(m_hScanner, &options), 1);
  EXPECT_EQ(options, 0xF4U);
  EXPECT_EQ(bench.state(0).options, 0xF4U);
}

TEST_F(ScannerStandIn, TheDeviceInfoTellsTheModel) {
  Device device;
  device.model = 4;
  bench.plug_in(1, device);
  void* const scanner = ftrScanOpenDeviceOnInterface(1);
  ftrScanDeviceInfoRecord info{9, 0, {}};
  EXPECT_EQ(ftrScanGetDeviceInfo(scanner, &info), 1);
  EXPECT_EQ(info.model, 4);
  ftrScanCloseDevice(scanner);
}

TEST_F(ScannerStandIn, RecordsOfAnotherSizeAreRefused) {
  ftrScanDeviceInfoRecord info{8, 0, {}};
  expect_failure(ftrScanGetDeviceInfo(m_hScanner, &info), kInvalidParameter);
  ftrScanVersionRecord version{27, {}, {}, {}};
  expect_failure(ftrScanGetVersion(m_hScanner, &version), kInvalidParameter);
}

TEST_F(ScannerStandIn, TheVersionsAreThoseOfTheDevice) {
  Device device;
  device.second_version = {9, 8, 7, kAbsentPart};
  bench.plug_in(1, device);
  void* const scanner = ftrScanOpenDeviceOnInterface(1);
  ftrScanVersionRecord version{28, {}, {}, {}};
  EXPECT_EQ(ftrScanGetVersion(scanner, &version), 1);
  EXPECT_EQ(version.second, device.second_version);
  EXPECT_EQ(version.third, device.third_version);
  ftrScanCloseDevice(scanner);
}

TEST_F(ScannerStandIn, FramesAreOfOneSize) {
  __FTRSCAN_IMAGE_SIZE size{};
  EXPECT_EQ(ftrScanGetImageSize(m_hScanner, &size), 1);
  EXPECT_EQ(size.width, kRawWidth);
  EXPECT_EQ(size.height, kRawHeight);
}

TEST_F(ScannerStandIn, LightsGoOnAndOff) {
  EXPECT_EQ(ftrScanSetDiodesStatus(m_hScanner, 255, 0), 1);
  std::uint8_t green = 0;
  std::uint8_t red = 1;
  EXPECT_EQ(ftrScanGetDiodesStatus(m_hScanner, &green, &red), 1);
  EXPECT_EQ(green, 255);
  EXPECT_EQ(red, 0);
  EXPECT_EQ(bench.state(0).green, 255);
}

TEST_F(ScannerStandIn, ControlBytesAreKept) {
  EXPECT_EQ(ftrScanSave7Bytes(m_hScanner, kSecret.data()), 1);
  EXPECT_EQ(ftrScanRestore7ControlBytes(m_hScanner, m_aBytes.data()), 1);
  EXPECT_EQ(m_aBytes, kSecret);
}

TEST_F(ScannerStandIn, SecretBytesNeedTheirCode) {
  EXPECT_EQ(ftrScanSetNewAuthorizationCode(m_hScanner, kCode.data()), 1);
  EXPECT_EQ(ftrScanSaveSecret7Bytes(m_hScanner, kCode.data(), kSecret.data()), 1);
  EXPECT_EQ(ftrScanRestoreSecret7Bytes(m_hScanner, kCode.data(), m_aBytes.data()), 1);
  EXPECT_EQ(m_aBytes, kSecret);
}

TEST_F(ScannerStandIn, AWrongCodeReachesNoSecretBytes) {
  ftrScanSetNewAuthorizationCode(m_hScanner, kCode.data());
  expect_failure(ftrScanSaveSecret7Bytes(m_hScanner, kSecret.data(), kSecret.data()), kWrongCode);
  expect_failure(ftrScanRestoreSecret7Bytes(m_hScanner, kSecret.data(), m_aBytes.data()),
                 kWrongCode);
  expect_failure(ftrScanRestoreSecret7Bytes(m_hScanner, nullptr, m_aBytes.data()), kWrongCode);
  EXPECT_EQ(bench.state(0).secret, SevenBytes{});
}

TEST_F(ScannerStandIn, ASerialNumberIsStoredFromItsBlock) {
  const std::array<unsigned char, 10> block = {0xBA, 'A', 'B', 'C', 'D', 0, 'F', 'G', 200, 0x62};
  const int sum = 'A' + 'B' + 'C' + 'D' + 'F' + 'G' + 200;
  std::array<unsigned char, 10> good = block;
  good[9] = static_cast<unsigned char>(sum);
  EXPECT_EQ(ftrScanSaveSerialNumber(m_hScanner, good.data()), 1);
  std::array<char, 8> serial = {};
  EXPECT_EQ(ftrScanGetSerialNumber(m_hScanner, serial.data()), 1);
  EXPECT_EQ(std::string(serial.data(), 8), std::string("ABCD\0FG\xC8", 8));
}

TEST_F(ScannerStandIn, ASerialNumberWithAWrongMarkOrSumIsRefused) {
  std::array<unsigned char, 10> block = {0xBB, 0, 0, 0, 0, 0, 0, 0, 1, 1};
  expect_failure(ftrScanSaveSerialNumber(m_hScanner, block.data()), kInvalidParameter);
  block = {0xBA, 0, 0, 0, 0, 0, 0, 0, 1, 2};
  expect_failure(ftrScanSaveSerialNumber(m_hScanner, block.data()), kInvalidParameter);
  EXPECT_EQ(bench.state(0).serial, Device().serial);
}

TEST_F(ScannerStandIn, MemoryIsWrittenAndReadInPieces) {
  const std::array<unsigned char, 3> data = {1, 2, 3};
  EXPECT_EQ(ftrScanSaveExtMemory(m_hScanner, data.data(), 100, 3), 1);
  std::array<unsigned char, 2> read = {};
  EXPECT_EQ(ftrScanRestoreExtMemory(m_hScanner, read.data(), 101, 2), 1);
  EXPECT_EQ(read, (std::array<unsigned char, 2>{2, 3}));
}

TEST_F(ScannerStandIn, MemoryEndsWhereItsSizeSays) {
  std::int32_t size = 0;
  EXPECT_EQ(ftrScanGetExtMemorySize(m_hScanner, &size), 1);
  Bytes all(static_cast<std::size_t>(size) + 1);
  EXPECT_EQ(ftrScanRestoreExtMemory(m_hScanner, all.data(), 0, static_cast<unsigned>(size)), 1);
  expect_failure(
      ftrScanRestoreExtMemory(m_hScanner, all.data(), 0, static_cast<unsigned>(size) + 1),
      kInvalidParameter);
  expect_failure(ftrScanRestoreExtMemory(m_hScanner, all.data(), ~0UL, 2), kInvalidParameter);
}

TEST_F(ScannerStandIn, ADeviceWithoutMemoryDoesNotSupportIt) {
  Device device;
  device.memory = eMemory::None;
  bench.plug_in(1, device);
  void* const scanner = ftrScanOpenDeviceOnInterface(1);
  std::int32_t size = -1;
  EXPECT_EQ(ftrScanGetExtMemorySize(scanner, &size), 1);
  EXPECT_EQ(size, 0);
  expect_failure(ftrScanRestoreExtMemory(scanner, m_aBytes.data(), 0, 7), kNotSupported);
  ftrScanCloseDevice(scanner);
}

TEST_F(ScannerStandIn, ABlankMemoryHoldsNoBlock) {
  Device device;
  device.memory = eMemory::Blank;
  device.memory_size = 100;
  bench.plug_in(1, device);
  EXPECT_EQ(bench.memory(1), Bytes(100));
}

TEST_F(ScannerStandIn, ACalibratedMemoryHoldsABlockThatTheReaderTakes) {
  const Bytes memory = bench.memory(0);
  ByteStream stream(memory);
  ClKR9CalibrationHeader header;
  unsigned char* payload = nullptr;
  unsigned int size = 0;
  header.ReadFromStream(&stream, memory.size(), &payload, size);
  EXPECT_EQ(header.RevisionString(), "simulated unit 1");
  EXPECT_EQ(header.Description(), "simulator");
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(payload), 8), std::string("CAL\0GEO\0", 8));
  EXPECT_LT(25U + 9U + size, memory.size());
}

TEST_F(ScannerStandIn, TheBenchReplacesAMemory) {
  bench.set_memory(0, {1, 2, 3});
  std::int32_t size = 0;
  ftrScanGetExtMemorySize(m_hScanner, &size);
  EXPECT_EQ(size, 3);
}

TEST_F(ScannerStandIn, AFingerIsPresentWhenTheSceneHasOne) {
  expect_failure(ftrScanIsFingerPresent(m_hScanner, nullptr), kNoFinger);
  bench.set_timeline(Timeline::settled_finger());
  EXPECT_EQ(ftrScanIsFingerPresent(m_hScanner, nullptr), 1);
}

TEST_F(ScannerStandIn, TheLastErrorCanBeSet) {
  ftrScanSetLastError(0x20000001);
  EXPECT_EQ(ftrScanGetLastError(), 0x20000001U);
}

TEST_F(ScannerStandIn, GlobalOptionsAreTaken) { EXPECT_EQ(ftrScanGlobalSetOptions(1, 1), 1); }

TEST_F(ScannerStandIn, AResetBenchHasTheDefaultScanner) {
  bench.plug_in(3, Device());
  bench.reset();
  EXPECT_EQ(listed(), (std::vector<int>{0}));
  EXPECT_EQ(ftrScanSetOptions(m_hScanner, 4, 4), 0);
}

}  // namespace
}  // namespace Osv::simulator
