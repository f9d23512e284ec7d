#include <gmock/gmock.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "driver/device/device_fixture.h"
#include "foundation/exceptions.h"
#include "support/failure_of.h"

namespace Osv::testing_support {
namespace {

using simulator::kAbsentPart;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using SerialNumber = OpenDeviceTest;

TEST_F(SerialNumber, IsReplacedByExactly8BytesZerosIncluded) {
  bench.plug_in(0, {.serial = std::string("A\0C\0EFG\0", 8)});
  EXPECT_TRUE(m_device.Initialize());
  std::string serial = "something longer than that";
  EXPECT_TRUE(m_device.GetSerialNumber(serial));
  EXPECT_EQ(serial, std::string("A\0C\0EFG\0", 8));
}

TEST_F(SerialNumber, StaysAsItIsWhenItCantBeRead) {
  std::string serial = "before";
  bench.set_faults("ftrScanGetSerialNumber fails with 5");
  EXPECT_FALSE(m_device.GetSerialNumber(serial));
  EXPECT_EQ(serial, "before");
}

TEST_F(SerialNumber, OfAnOlderLibraryIs8BytesWithoutACall) {
  m_device.table().m_nApiLevel = 0;
  std::string serial;
  EXPECT_THAT(calls_of([&] { EXPECT_TRUE(m_device.GetSerialNumber(serial)); }), IsEmpty());
  EXPECT_EQ(serial.size(), 8U);
}

TEST_F(SerialNumber, IsStoredAsABlockOfMarkBytesAndSum) {
  static std::vector<unsigned char> given;
  m_device.table().ftrScanSaveSerialNumber = [](ScannerHandle, void* block) {
    const auto* const bytes = static_cast<const unsigned char*>(block);
    given.assign(bytes, bytes + 10);
    return 1;
  };
  EXPECT_TRUE(m_device.SetSerialNumber("\xFF\xFE\x01zzzzz and more"));
  // 0xFF + 0xFE + 1 + 5 * 0x7A = 0x460
  EXPECT_THAT(given, ElementsAre(0xBA, 0xFF, 0xFE, 0x01, 'z', 'z', 'z', 'z', 'z', 0x60));
}

TEST_F(SerialNumber, ThatIsShortIsStoredWithZerosBehindIt) {
  bench.plug_in(0, {.serial = "ABCDEFGH"});
  EXPECT_TRUE(m_device.Initialize());
  EXPECT_TRUE(m_device.SetSerialNumber("xyz"));  // accepted: the sum is that of the padded block
  EXPECT_EQ(bench.state(0).serial, std::string("xyz\0\0\0\0\0", 8));
}

TEST_F(SerialNumber, ReachesTheScanner) {
  EXPECT_THAT(calls_of([&] { EXPECT_TRUE(m_device.SetSerialNumber("12345678")); }),
              ElementsAre("ftrScanSaveSerialNumber(handle 2, buffer) = 1"));
  EXPECT_EQ(bench.state(0).serial, "12345678");
}

TEST_F(SerialNumber, IsNotStoredWhenTheCallFails) {
  bench.set_faults("ftrScanSaveSerialNumber fails with 5");
  EXPECT_FALSE(m_device.SetSerialNumber("12345678"));
}

/// A version block and its text.
struct VersionText {
  simulator::Version version;
  const char* text;
};

class DeviceVersions : public OpenDeviceTest, public ::testing::WithParamInterface<VersionText> {
 protected:
  void read() { m_device.GetDeviceVersions(m_first, m_second, m_third); }

  std::string m_first = "first";
  std::string m_second = "second";
  std::string m_third = "third";
};

TEST_P(DeviceVersions, AreWrittenInDecimalUpToTheFirstAbsentPart) {
  bench.plug_in(0, {.second_version = GetParam().version, .third_version = {9, 8, 7, 6}});
  EXPECT_TRUE(m_device.Initialize());
  read();
  EXPECT_EQ(m_first, GetParam().text);
  EXPECT_EQ(m_second, "9.8.7.6");
}

INSTANTIATE_TEST_SUITE_P(
    OfTheDevice, DeviceVersions,
    ::testing::Values(VersionText{{2, 1, kAbsentPart, kAbsentPart}, "2.1"},
                      VersionText{{2, 1, kAbsentPart, 4}, "2.1"},
                      VersionText{{2, 1, 3, kAbsentPart}, "2.1.3"},
                      VersionText{{2, 1, 3, 4}, "2.1.3.4"}, VersionText{{0, 0, 0, 0}, "0.0.0.0"},
                      VersionText{{kAbsentPart, kAbsentPart, 65534, 10}, "65535.65535.65534.10"}),
    [](const auto& version) { return "Number" + std::to_string(version.index); });

TEST_F(DeviceVersions, LeaveTheThirdTextAlone) {
  read();
  EXPECT_EQ(m_third, "third");
}

TEST_F(DeviceVersions, EmptyTheFirstTextAloneWhenTheyCantBeRead) {
  bench.set_faults("ftrScanGetVersion fails with 5");
  read();
  EXPECT_EQ(m_first, "");
  EXPECT_EQ(m_second, "second");
}

TEST_F(DeviceVersions, EmptyTheFirstTextWithoutACallForAnOlderLibrary) {
  m_device.table().ftrScanGetVersion = nullptr;
  EXPECT_THAT(calls_of([&] { read(); }), IsEmpty());
  EXPECT_EQ(m_first, "");
  EXPECT_EQ(m_second, "second");
}

TEST_F(DeviceVersions, AreAskedForWithARecordOfSize28) {
  static std::uint32_t given;
  m_device.table().ftrScanGetVersion = [](ScannerHandle, ftrScanVersionRecord* record) {
    given = record->nSize;
    return 0;
  };
  read();
  EXPECT_EQ(given, 28U);
}

using LastError = OpenDeviceTest;

TEST_F(LastError, Of259Is2) {
  m_device.SetLastError(259);
  EXPECT_EQ(m_device.GetLastError(), 2UL);
}

TEST_F(LastError, OfAnyOtherCodeIsThatCode) {
  for (const unsigned long code : {0UL, 2UL, 121UL, 258UL, 260UL, 0x20000004UL, 0xFFFFFFFFUL}) {
    m_device.SetLastError(code);
    EXPECT_EQ(m_device.GetLastError(), code);
  }
}

TEST_F(LastError, IsSetWithItsLower32Bits) {
  EXPECT_THAT(calls_of([&] { m_device.SetLastError(0x700000079UL); }),
              ElementsAre("ftrScanSetLastError(error 121) = "));
}

using Options = OpenDeviceTest;

TEST_F(Options, ForTheLongImageAreMask4AndFlags4) {
  EXPECT_THAT(calls_of([&] { EXPECT_TRUE(m_device.SetLongImage()); }),
              ElementsAre("ftrScanSetOptions(handle 2, mask 4, flags 4) = 1"));
}

TEST_F(Options, ForTheLongImageAreLogged) {
  EXPECT_THAT(lines_of([&] { (void)m_device.SetLongImage(); }),
              ElementsAre("level 7, 'ClFutronicBaseSDK::SetLongImage is called'"));
}

TEST_F(Options, PassOnTheLower32BitsOfMaskAndFlags) {
  EXPECT_THAT(calls_of([&] { EXPECT_TRUE(m_device.SetOptions(0x1FFFFFFFFUL, 0x500000003UL)); }),
              ElementsAre("ftrScanSetOptions(handle 2, mask 4294967295, flags 3) = 1"));
}

TEST_F(Options, AreReadBack) {
  unsigned int flags = 0;
  EXPECT_TRUE(m_device.SetOptions(0xFF, 0x21));
  EXPECT_TRUE(m_device.GetOptions(&flags));
  EXPECT_EQ(flags, 0x21U);
}

TEST_F(Options, AreFalseWhenTheCallFails) {
  unsigned int flags = 0;
  bench.set_faults("ftrScanSetOptions fails with 5; ftrScanGetOptions fails with 5");
  EXPECT_FALSE(m_device.SetLongImage());
  EXPECT_FALSE(m_device.SetOptions(1, 1));
  EXPECT_FALSE(m_device.GetOptions(&flags));
}

using ControlBytes = OpenDeviceTest;

TEST_F(ControlBytes, AreStoredAndReadBack) {
  simulator::SevenBytes bytes = {1, 2, 3, 0, 5, 6, 255};
  simulator::SevenBytes read = {};
  EXPECT_TRUE(m_device.PutEPROMData(bytes.data()));
  EXPECT_TRUE(m_device.GetEPROMData(read.data()));
  EXPECT_EQ(read, bytes);
  EXPECT_THAT(journal(), ElementsAre("ftrScanSave7Bytes(handle 2, buffer) = 1",
                                     "ftrScanRestore7ControlBytes(handle 2, buffer) = 1"));
}

TEST_F(ControlBytes, AreFalseWhenTheCallFails) {
  simulator::SevenBytes bytes = {};
  bench.set_faults("ftrScanSave7Bytes fails with 5; ftrScanRestore7ControlBytes fails with 5");
  EXPECT_FALSE(m_device.PutEPROMData(bytes.data()));
  EXPECT_FALSE(m_device.GetEPROMData(bytes.data()));
}

using ImageSize = OpenDeviceTest;

TEST_F(ImageSize, IsTheLibrarys) {
  __FTRSCAN_IMAGE_SIZE size{};
  EXPECT_TRUE(m_device.GetImageSize(&size));
  EXPECT_EQ(size.nWidth, simulator::kRawWidth);
  EXPECT_EQ(size.nHeight, simulator::kRawHeight);
}

TEST_F(ImageSize, IsFalseWhenTheCallFails) {
  __FTRSCAN_IMAGE_SIZE size{};
  bench.set_faults("ftrScanGetImageSize fails with 5");
  EXPECT_FALSE(m_device.GetImageSize(&size));
}

TEST_F(ImageSize, LeavesTheLEDsAlone) {
  EXPECT_TRUE(m_device.SwitchGreenLED(true));
  __FTRSCAN_IMAGE_SIZE size{};
  EXPECT_THAT(calls_of([&] { EXPECT_TRUE(m_device.GetImageSize(&size)); }),
              ElementsAre("ftrScanGetImageSize(handle 2, buffer) = 1"));
}

using FingerPresence = OpenDeviceTest;

TEST_F(FingerPresence, IsTheLibrarysStatus) {
  bench.set_faults(
      "ftrScanIsFingerPresent call 1 answers 5; ftrScanIsFingerPresent call 2 fails with 4306");
  EXPECT_EQ(m_device.IsFingerPresent(), 5);
  EXPECT_EQ(m_device.IsFingerPresent(), 0);
}

TEST_F(FingerPresence, IsAskedForWithNullParameters) {
  m_device.table().ftrScanIsFingerPresent = [](ScannerHandle, void* parameters) {
    return parameters == nullptr ? 1 : 0;
  };
  EXPECT_EQ(m_device.IsFingerPresent(), 1);
}

TEST_F(FingerPresence, LeavesTheLEDsAlone) {
  EXPECT_TRUE(m_device.SwitchGreenLED(true));
  m_device.IsFingerPresent();
  EXPECT_EQ(bench.count("ftrScanSetDiodesStatus"), 1U);
}

class ProtectedBytes : public OpenDeviceTest {
 protected:
  bool set_code() { return m_device.SetNewAuthorizationCode(m_code.data()); }
  bool save() { return m_device.SaveSecret7Bytes(m_code.data(), m_bytes.data()); }
  bool restore() { return m_device.RestoreSecret7Bytes(m_code.data(), m_bytes.data()); }

  simulator::SevenBytes m_code = {0, 1, 2, 3, 4, 5, 0};
  simulator::SevenBytes m_bytes = {7, 6, 5, 4, 0, 2, 1};
};

TEST_F(ProtectedBytes, PassThroughUnchanged) {
  EXPECT_TRUE(set_code());
  EXPECT_TRUE(save());
  const simulator::SevenBytes saved = m_bytes;
  m_bytes = {};
  EXPECT_TRUE(restore());
  EXPECT_EQ(m_bytes, saved);
  EXPECT_EQ(bench.state(0).authorization_code, m_code);
  EXPECT_EQ(bench.state(0).secret, saved);
}

TEST_F(ProtectedBytes, GoWithTheHandleAndTheCode) {
  EXPECT_THAT(calls_of([&] {
                EXPECT_TRUE(set_code());
                EXPECT_TRUE(save());
                EXPECT_TRUE(restore());
              }),
              ElementsAre("ftrScanSetNewAuthorizationCode(handle 2, buffer) = 1",
                          "ftrScanSaveSecret7Bytes(handle 2, code, buffer) = 1",
                          "ftrScanRestoreSecret7Bytes(handle 2, code, buffer) = 1"));
}

TEST_F(ProtectedBytes, SucceedExactlyForStatus1) {
  for (const char* const status : {"0", "2", "-1", "257"}) {
    const std::string answer = std::string(" answers ") + status + ";";
    bench.set_faults("ftrScanSetNewAuthorizationCode" + answer + "ftrScanSaveSecret7Bytes" +
                     answer + "ftrScanRestoreSecret7Bytes" + answer);
    EXPECT_FALSE(set_code()) << status;
    EXPECT_FALSE(save()) << status;
    EXPECT_FALSE(restore()) << status;
  }
}

TEST_F(ProtectedBytes, AreRefusedWithNumber22ByALibraryWithoutThem) {
  m_libraries.leave_out(kScannerLibrary, "ftrScanSetNewAuthorizationCode");
  m_device.table().Initialize();
  const auto number_of = [](auto action) {
    return failure_of<lx::ClKR9NOTImplException>(action).GetErrorNumber();
  };
  EXPECT_EQ(number_of([&] { (void)set_code(); }), 22);
  EXPECT_EQ(number_of([&] { (void)save(); }), 22);
  EXPECT_EQ(number_of([&] { (void)restore(); }), 22);
}

using DeviceLogging = OpenDeviceTest;

constexpr char kCantLog[] =
    "level 4, 'The installed version of KR9ScanAPI doesn't support the logging facility'";

TEST_F(DeviceLogging, IsSaidToBeUnsupportedOnEveryCall) {
  EXPECT_THAT(lines_of([&] {
                EXPECT_TRUE(m_device.LoggingEnable(7, "/nonexistent/log"));
                EXPECT_TRUE(m_device.LoggingEnable(0, nullptr));
              }),
              ElementsAre(kCantLog, kCantLog));
}

TEST_F(DeviceLogging, IsSaidToBeUnsupportedByAnOlderLibraryToo) {
  m_device.table().m_nApiLevel = 0;
  EXPECT_THAT(lines_of([&] { m_device.LoggingEnable(7, "log"); }), ElementsAre(kCantLog));
}

TEST_F(DeviceLogging, IsSilentWithALibraryOfAHigherLevel) {
  m_device.table().m_nApiLevel = 2;
  EXPECT_THAT(lines_of([&] { EXPECT_TRUE(m_device.LoggingEnable(7, "log")); }), IsEmpty());
}

TEST_F(DeviceLogging, IsSilentWithoutALog) {
  EXPECT_THAT(calls_of([&] { EXPECT_TRUE(m_device.LoggingEnable(7, "log")); }), IsEmpty());
}

TEST_F(DeviceLogging, IsDisabledWithoutAnyCall) {
  EXPECT_THAT(lines_of([&] { EXPECT_TRUE(m_device.LoggingDisable()); }), IsEmpty());
  EXPECT_THAT(calls_of([&] { m_device.RemoteDesktopHandling(); }), IsEmpty());
}

}  // namespace
}  // namespace Osv::testing_support
