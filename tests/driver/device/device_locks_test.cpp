#include <gmock/gmock.h>

#include <string>
#include <thread>
#include <vector>

#include "driver/device/device_fixture.h"
#include "foundation/wait.h"

namespace Osv::testing_support {
namespace {

/// An operation, and a library function that it calls.
struct Operation {
  const char* name;
  const char* function;
  void (*run)(DeviceProbe& device, unsigned char* bytes);
};

/// Runs an operation on a thread of its own and blocks it inside the library function.
class DeviceLocks : public OpenDeviceTest, public ::testing::WithParamInterface<Operation> {
 protected:
  DeviceLocks() {
    EXPECT_TRUE(m_device.SwitchGreenLED(true));  // so that LEDs are restored
    bench.set_faults(std::string(GetParam().function) + " call 1 blocks until told");
    m_thread = std::thread([this] { GetParam().run(m_device, m_frame.data()); });
    bench.wait_until_blocked(GetParam().function);
  }

  ~DeviceLocks() override {
    bench.release();
    m_thread.join();
  }

  std::thread m_thread;
};

using LockingOperations = DeviceLocks;

TEST_P(LockingOperations, HoldTheMutexWhileTheLibraryWorks) {
  EXPECT_TRUE(is_held(m_device.m_cScannerLock));
}

const Operation kLocking[] = {
    {"Initialize", "ftrScanOpenDeviceOnInterface",
     [](auto& device, auto*) { (void)device.Initialize(); }},
    {"InitializeWhileListing", "ftrScanGetInterfaces",
     [](auto& device, auto*) { (void)device.Initialize(); }},
    {"InitializeWhileClosing", "ftrScanCloseDevice",
     [](auto& device, auto*) { (void)device.Initialize(); }},
    {"Unitialize", "ftrScanCloseDevice", [](auto& device, auto*) { device.Unitialize(); }},
    {"SetScanInterface", "ftrSetBaseInterface",
     [](auto& device, auto*) { (void)device.SetScanInterface(0); }},
    {"GetImageSize", "ftrScanGetImageSize",
     [](auto& device, auto*) {
       __FTRSCAN_IMAGE_SIZE size{};
       (void)device.GetImageSize(&size);
     }},
    {"GetImageByDose", "ftrScanGetImageByVariableDose",
     [](auto& device, auto* bytes) { (void)device.GetImageByDose(bytes, 60); }},
    {"GetImageByDoseWhileRestoringLEDs", "ftrScanSetDiodesStatus",
     [](auto& device, auto* bytes) { (void)device.GetImageByDose(bytes, 60); }},
    {"GetImageBlackLight", "ftrScanGetBacklightImage",
     [](auto& device, auto* bytes) { (void)device.GetImageBlackLight(bytes); }},
    {"GetImageBlackLightWhileRestoringLEDs", "ftrScanSetDiodesStatus",
     [](auto& device, auto* bytes) { (void)device.GetImageBlackLight(bytes); }},
    {"GetDarkImage", "ftrScanGetDarkImage",
     [](auto& device, auto* bytes) { (void)device.GetDarkImage(bytes); }},
    {"GetDarkImageWhileRestoringLEDs", "ftrScanSetDiodesStatus",
     [](auto& device, auto* bytes) { (void)device.GetDarkImage(bytes); }},
    {"CaptureFrame", "ftrScanGetFrame",
     [](auto& device, auto* bytes) { device.CaptureFrame(bytes, 1); }},
    {"CaptureFrameWhileRestoringLEDs", "ftrScanSetDiodesStatus",
     [](auto& device, auto* bytes) { device.CaptureFrame(bytes, 1); }},
    {"CaptureImage", "ftrScanGetFrame",
     [](auto& device, auto* bytes) { device.CaptureImage(bytes, 0); }},
    {"CaptureImageWhileRestoringLEDs", "ftrScanSetDiodesStatus",
     [](auto& device, auto* bytes) { device.CaptureImage(bytes, 0); }},
    {"CaptureFuzzyImage", "ftrScanGetBacklightImage",
     [](auto& device, auto* bytes) { device.CaptureFuzzyImage(bytes); }},
    {"CaptureFuzzyImageWhileRestoringLEDs", "ftrScanSetDiodesStatus",
     [](auto& device, auto* bytes) { device.CaptureFuzzyImage(bytes); }},
    {"IsFingerPresent", "ftrScanIsFingerPresent",
     [](auto& device, auto*) { device.IsFingerPresent(); }},
    {"SetOptions", "ftrScanSetOptions", [](auto& device, auto*) { device.SetOptions(1, 1); }},
    {"GetOptions", "ftrScanGetOptions",
     [](auto& device, auto*) {
       unsigned int flags = 0;
       device.GetOptions(&flags);
     }},
    {"GetEPROMSize", "ftrScanGetExtMemorySize",
     [](auto& device, auto*) {
       int size = 0;
       (void)device.GetEPROMSize(&size);
     }},
    {"ReadRaw", "ftrScanRestoreExtMemory",
     [](auto& device, auto* bytes) { device.ReadRaw(bytes, 4); }},
    {"WriteRaw", "ftrScanSaveExtMemory",
     [](auto& device, auto* bytes) { device.WriteRaw(bytes, 4); }},
    {"GetEPROMData", "ftrScanRestore7ControlBytes",
     [](auto& device, auto* bytes) { device.GetEPROMData(bytes); }},
    {"PutEPROMData", "ftrScanSave7Bytes",
     [](auto& device, auto* bytes) { device.PutEPROMData(bytes); }},
    {"GetSerialNumber", "ftrScanGetSerialNumber",
     [](auto& device, auto*) {
       std::string serial;
       (void)device.GetSerialNumber(serial);
     }},
    {"SetSerialNumber", "ftrScanSaveSerialNumber",
     [](auto& device, auto*) { device.SetSerialNumber("12345678"); }},
    {"GetDeviceVersions", "ftrScanGetVersion",
     [](auto& device, auto*) {
       std::string text;
       device.GetDeviceVersions(text, text, text);
     }},
    {"SwitchRedLED", "ftrScanSetDiodesStatus",
     [](auto& device, auto*) { device.SwitchRedLED(true); }},
    {"SwitchGreenLED", "ftrScanSetDiodesStatus",
     [](auto& device, auto*) { device.SwitchGreenLED(true); }},
    {"GetLastError", "ftrScanGetLastError",
     [](auto& device, auto*) { (void)device.GetLastError(); }},
};

INSTANTIATE_TEST_SUITE_P(OfTheDevice, LockingOperations, ::testing::ValuesIn(kLocking),
                         [](const auto& operation) { return operation.param.name; });

using FreeOperations = DeviceLocks;

TEST_P(FreeOperations, LeaveTheMutexAloneWhileTheLibraryWorks) {
  EXPECT_FALSE(is_held(m_device.m_cScannerLock));
}

const Operation kFree[] = {
    {"Destroy", "ftrScanCloseDevice", [](auto& device, auto*) { device.Destroy(); }},
    {"GetKR9ScannerList", "ftrScanGetInterfaces",
     [](auto& device, auto*) {
       std::vector<DeviceInfo> list;
       device.GetKR9ScannerList(list);
     }},
    {"IsKR9ScannerOfAHandle", "ftrScanGetDeviceInfo",
     [](auto& device, auto*) { device.IsKR9Scanner(nullptr); }},
    {"IsKR9ScannerOfAnInterface", "ftrScanOpenDeviceOnInterface",
     [](auto& device, auto*) { device.IsKR9Scanner(0); }},
    {"SetLongImage", "ftrScanSetOptions", [](auto& device, auto*) { (void)device.SetLongImage(); }},
    {"SwitchLEDState", "ftrScanSetDiodesStatus",
     [](auto& device, auto*) { device.SwitchLEDState(2, true); }},
    {"RestoreLEDsState", "ftrScanSetDiodesStatus",
     [](auto& device, auto*) { device.RestoreLEDsState(); }},
    {"SetLastError", "ftrScanSetLastError", [](auto& device, auto*) { device.SetLastError(5); }},
    {"SetNewAuthorizationCode", "ftrScanSetNewAuthorizationCode",
     [](auto& device, auto* bytes) { (void)device.SetNewAuthorizationCode(bytes); }},
    {"SaveSecret7Bytes", "ftrScanSaveSecret7Bytes",
     [](auto& device, auto* bytes) { (void)device.SaveSecret7Bytes(bytes, bytes); }},
    {"RestoreSecret7Bytes", "ftrScanRestoreSecret7Bytes",
     [](auto& device, auto* bytes) { (void)device.RestoreSecret7Bytes(bytes, bytes); }},
};

INSTANTIATE_TEST_SUITE_P(OfTheDevice, FreeOperations, ::testing::ValuesIn(kFree),
                         [](const auto& operation) { return operation.param.name; });

using QuietOperations = OpenDeviceTest;

TEST_F(QuietOperations, GetScanInterfaceAndTheLoggingOnesTakeTheMutexOnce) {
  const LockCount locks(m_device.m_cScannerLock);
  unsigned long interfaceNumber = 0;
  m_device.GetScanInterface(interfaceNumber);
  EXPECT_EQ(locks.so_far(), 1);
  m_device.LoggingEnable(7, "log");
  EXPECT_EQ(locks.so_far(), 2);
  m_device.LoggingDisable();
  EXPECT_EQ(locks.so_far(), 3);
}

TEST_F(QuietOperations, LEDStatesAndResetOfTheStreamTakeNoMutex) {
  const LockCount locks(m_device.m_cScannerLock);
  m_device.StateGreenLED();
  m_device.StateRedLED();
  m_device.ResetStream();
  m_device.OpenLibrary();
  m_device.RemoteDesktopHandling();
  EXPECT_EQ(locks.so_far(), 0);
}

TEST_F(QuietOperations, SetScanInterfaceLoadsTheLibraryBeforeItTakesTheMutex) {
  m_libraries.make_absent(kScannerLibrary);
  DeviceProbe device;
  const LockCount locks(device.m_cScannerLock);
  EXPECT_ANY_THROW((void)device.SetScanInterface(0));
  EXPECT_EQ(locks.so_far(), 0);
}

TEST_F(QuietOperations, AScannerThatStaysBusyIsAskedUnderOneHoldOfTheMutex) {
  static CXMutex* mutex;
  static int heldWaits;
  mutex = &m_device.m_cScannerLock;
  heldWaits = 0;
  const WaitFunction before =
      ExchangeWaitFunction([](eWait, int) { heldWaits += static_cast<int>(is_held(*mutex)); });
  bench.set_faults("ftrScanGetImageByVariableDose fails with 121");
  const LockCount locks(m_device.m_cScannerLock);
  EXPECT_FALSE(m_device.GetImageByDose(m_frame.data(), 60));
  ExchangeWaitFunction(before);
  EXPECT_EQ(locks.so_far(), 1);
  EXPECT_EQ(heldWaits, 20);
}

TEST_F(QuietOperations, AFailedReadAsksForTheErrorWithTheMutexHeld) {
  bench.set_faults("ftrScanRestoreExtMemory fails with 87; ftrScanGetLastError blocks until told");
  std::thread reader([&] { EXPECT_ANY_THROW(m_device.ReadRaw(m_frame.data(), 4)); });
  bench.wait_until_blocked("ftrScanGetLastError");
  EXPECT_TRUE(is_held(m_device.m_cScannerLock));
  bench.release();
  reader.join();
}

TEST_F(QuietOperations, AFailedWriteAsksForTheErrorWithTheMutexHeld) {
  bench.set_faults("ftrScanSaveExtMemory fails with 87; ftrScanGetLastError blocks until told");
  std::thread writer([&] { EXPECT_ANY_THROW(m_device.WriteRaw(m_frame.data(), 4)); });
  bench.wait_until_blocked("ftrScanGetLastError");
  EXPECT_TRUE(is_held(m_device.m_cScannerLock));
  bench.release();
  writer.join();
}

}  // namespace
}  // namespace Osv::testing_support
