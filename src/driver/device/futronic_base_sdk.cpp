#include "driver/device/futronic_base_sdk.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>

#include "foundation/exceptions.h"
#include "foundation/logging_client.h"
#include "foundation/wait.h"
#include "ostrevanhvk3/errors.h"

namespace Osv {
namespace {

constexpr std::uint32_t kLongImageOption = 4;
constexpr std::uint8_t kLEDOn = 255;
constexpr unsigned int kGreenLED = 1;
constexpr unsigned int kRedLED = 2;

constexpr int kFrameTries = 20;
constexpr int kBusyPauseMs = 100;
constexpr std::uint32_t kErrorBusy = 121;

constexpr std::uint32_t kErrorNoDevice = 259;
constexpr unsigned long kErrorNotSupported = 8;

constexpr int kFrameFill = 100;
constexpr std::size_t kSerialSize = 8;
constexpr unsigned char kSerialTag = 0xBA;
constexpr std::uint16_t kAbsentPart = 0xFFFF;
constexpr int kSecretAccepted = 1;

/// Closes a device when a scope is left.
class OpenDevice {
 public:
  OpenDevice(ClKR9APILib& api, int interfaceNumber)
      : m_api(api), m_handle(api.ftrScanOpenDeviceOnInterface(interfaceNumber)) {}
  ~OpenDevice() {
    if (m_handle != nullptr) {
      m_api.ftrScanCloseDevice(m_handle);
    }
  }
  OpenDevice(const OpenDevice&) = delete;
  OpenDevice& operator=(const OpenDevice&) = delete;

  ScannerHandle get() const { return m_handle; }

 private:
  ClKR9APILib& m_api;
  ScannerHandle m_handle;
};

std::string version_text(const ftrScanVersionBlock& block) {
  std::string text = std::to_string(block[0]) + '.' + std::to_string(block[1]);
  for (std::size_t part = 2; part < block.size() && block[part] != kAbsentPart; ++part) {
    text += '.' + std::to_string(block[part]);
  }
  return text;
}

[[noreturn]] void throw_not_supported() {
  throw lx::ClKR9NOTImplException(lx::error_text::HardwareVersion,
                                  lx::error_number::HardwareVersion);
}

/// The function, or number 22 when an older scanner library lacks it.
template <typename Function>
Function present(Function function) {
  if (function == nullptr) {
    throw_not_supported();
  }
  return function;
}

}  // namespace

ClFutronicBaseSDK::ClFutronicBaseSDK() : m_sLogFileName("LogFileName") {
  OSV_LOG(OsvLFTrace, "ClFutronicBaseSDK is constructed");
}

ClFutronicBaseSDK::~ClFutronicBaseSDK() {
  OSV_LOG(OsvLFTrace, "ClFutronicBaseSDK is distroyed");
  Unitialize();
}

void ClFutronicBaseSDK::OpenLibrary() {
  const std::lock_guard<std::mutex> lock(m_cLoading);
  if (m_pApiLib.get() == nullptr) {
    OSV_LOG(OsvLFTrace, "ClFutronicBaseSDK::Initialize load KR9 library");
    m_pApiLib.reset(std::make_shared<ClKR9APILib>());
  }
}

std::shared_ptr<ClKR9APILib> ClFutronicBaseSDK::Api() {
  std::shared_ptr<ClKR9APILib> api = m_pApiLib.get();
  if (api == nullptr) {
    OpenLibrary();
    api = m_pApiLib.get();
  }
  return api;
}

std::uint8_t ClFutronicBaseSDK::ApiLevel() const {
  const std::shared_ptr<ClKR9APILib> api = m_pApiLib.get();
  return api == nullptr ? 0 : api->m_nApiLevel;
}

bool ClFutronicBaseSDK::Initialize() {
  const Lock lock(m_cScannerLock);
  OSV_LOG(OsvLFTrace, "ClFutronicBaseSDK::Initialize is called");
  OpenLibrary();
  Destroy();
  OSV_LOG(OsvLFTrace, "ClFutronicBaseSDK::Initialize, ScanOpenDevice");
  std::vector<DeviceInfo> list;
  GetKR9ScannerList(list);
  if (list.empty()) {
    OSV_LOG(OsvLFTrace, "ClFutronicBaseSDK::Initialize No device attached");
  }
  const auto api = Api();
  for (const DeviceInfo& device : list) {
    ftrHandle = api->ftrScanOpenDeviceOnInterface(static_cast<int>(device.nInterface));
    if (ftrHandle != nullptr) {
      break;
    }
  }
  if (ftrHandle != nullptr) {
    OSV_LOG(OsvLFTrace, "ClFutronicBaseSDK::Initialize device opened");
  } else {
    OSV_LOG(OsvLFTrace, "ClFutronicBaseSDK::Initialize unable to open any device");
  }
  ResetStream();
  return ftrHandle != nullptr;
}

void ClFutronicBaseSDK::Destroy() {
  const auto api = m_pApiLib.get();
  if (ftrHandle == nullptr || api == nullptr) {
    return;
  }
  OSV_LOG(OsvLFTrace, "ClFutronicBaseSDK::Destroy close device");
  api->ftrScanSetDiodesStatus(ftrHandle, 0, 0);
  api->ftrScanCloseDevice(ftrHandle);
  ftrHandle = nullptr;
  ResetStream();
}

void ClFutronicBaseSDK::Unitialize() {
  const Lock lock(m_cScannerLock);
  Destroy();
}

bool ClFutronicBaseSDK::AttachedInterfaces(std::vector<int>& numbers) {
  OpenLibrary();
  numbers.clear();
  ftrScanInterfaceList interfaces{};
  if (Api()->ftrScanGetInterfaces(&interfaces) == 0) {
    return false;
  }
  for (std::size_t number = 0; number < interfaces.size(); ++number) {
    if (interfaces[number] == 0) {
      numbers.push_back(static_cast<int>(number));
    }
  }
  return true;
}

void ClFutronicBaseSDK::GetKR9ScannerList(std::vector<DeviceInfo>& list) {
  std::vector<int> numbers;
  const bool told = AttachedInterfaces(numbers);
  list.clear();
  if (!told) {
    return;
  }
  const auto api = Api();
  for (const int number : numbers) {
    try {
      list.push_back(DescribeScanner(*api, number));
    } catch (const lx::ClLXException&) {
      // A device that does not answer as a scanner of this family does not appear in the list.
    }
  }
}

DeviceInfo ClFutronicBaseSDK::DescribeScanner(ClKR9APILib& api, int interfaceNumber) {
  const OpenDevice device(api, interfaceNumber);
  if (device.get() == nullptr) {
    throw lx::ClLXException("ftrScanOpenDeviceOnInterface failed", lx::error_number::NoNumber);
  }
  if (!IsKR9Scanner(device.get())) {
    throw lx::ClLXException("IsKR9Scanner failed", lx::error_number::NoNumber);
  }
  DeviceInfo info{};
  info.nInterface = static_cast<unsigned int>(interfaceNumber);
  if (api.ftrScanGetSerialNumber(device.get(), &info) == 0) {
    throw lx::ClLXException("ftrScanGetSerialNumber failed", lx::error_number::NoNumber);
  }
  return info;
}

FamilyFindings ClFutronicBaseSDK::Family(ScannerHandle handle) {
  return TestFamily(*Api(), handle == nullptr ? ftrHandle.get() : handle);
}

FamilyFindings ClFutronicBaseSDK::Family(int interfaceNumber) {
  OpenLibrary();
  const auto api = Api();
  const OpenDevice device(*api, interfaceNumber);
  return device.get() == nullptr ? FamilyFindings() : TestFamily(*api, device.get());
}

bool ClFutronicBaseSDK::IsKR9Scanner(ScannerHandle handle) {
  return Family(handle).result == eFamily::Member;
}

bool ClFutronicBaseSDK::IsKR9Scanner(int interfaceNumber) {
  return Family(interfaceNumber).result == eFamily::Member;
}

bool ClFutronicBaseSDK::SetScanInterface(unsigned long interfaceNumber) {
  OpenLibrary();
  const Lock lock(m_cScannerLock);
  const auto api = Api();
  if (ftrHandle != nullptr) {
    api->ftrScanCloseDevice(ftrHandle);
    ftrHandle = nullptr;
  }
  if (api->ftrSetBaseInterface(static_cast<int>(interfaceNumber)) == 0) {
    return false;
  }
  m_nScanInterface = interfaceNumber;
  return true;
}

bool ClFutronicBaseSDK::GetScanInterface(unsigned long& interfaceNumber) {
  const Lock lock(m_cScannerLock);
  interfaceNumber = m_nScanInterface;
  return true;
}

bool ClFutronicBaseSDK::GetImageSize(__FTRSCAN_IMAGE_SIZE* size) {
  const Lock lock(m_cScannerLock);
  return Api()->ftrScanGetImageSize(ftrHandle, size) != 0;
}

bool ClFutronicBaseSDK::GetImageByDose(unsigned char* buffer, int dose) {
  const Lock lock(m_cScannerLock);
  const auto api = Api();
  bool fetched = false;
  for (int tries = 0; tries < kFrameTries; ++tries) {
    fetched = api->ftrScanGetImageByVariableDose(ftrHandle, dose, buffer) != 0;
    if (fetched || api->ftrScanGetLastError() != kErrorBusy) {
      break;
    }
    Wait(eWait::BoostSleep, kBusyPauseMs);
  }
  RestoreLEDsState();
  return fetched;
}

bool ClFutronicBaseSDK::GetImageBlackLight(const unsigned char* buffer) {
  return CaptureFuzzyImage(const_cast<unsigned char*>(buffer)) != 0;
}

bool ClFutronicBaseSDK::GetDarkImage(unsigned char* buffer) {
  const Lock lock(m_cScannerLock);
  const int status = Api()->ftrScanGetDarkImage(ftrHandle, buffer);
  RestoreLEDsState();
  return status != 0;
}

int ClFutronicBaseSDK::CaptureFrame(unsigned char* buffer, unsigned long size) {
  const Lock lock(m_cScannerLock);
  OSV_LOG(OsvLFTrace, "ClFutronicBaseSDK::CaptureFrame read the image buffer address: %p",
          static_cast<void*>(buffer));
  OSV_LOG(OsvLFTrace, "ClFutronicBaseSDK::CaptureFrame read the ftrHandle address: %p",
          ftrHandle.get());
  OSV_LOG(OsvLFTrace, "ClFutronicBaseSDK::CaptureFrame is filling the buffer with 100");
  std::memset(buffer, kFrameFill, size);
  const int status = Api()->ftrScanGetFrame(ftrHandle, buffer, nullptr);
  OSV_LOG(OsvLFTrace,
          "ClFutronicBaseSDK::CaptureFrame called  ftrScanGetFrame methode, the return value: %d",
          status);
  RestoreLEDsState();
  OSV_LOG(OsvLFTrace, "ClFutronicBaseSDK::CaptureFrame quit");
  return status;
}

bool ClFutronicBaseSDK::CaptureImage(unsigned char* buffer, int /*unused*/) {
  const Lock lock(m_cScannerLock);
  const int status = Api()->ftrScanGetFrame(ftrHandle, buffer, nullptr);
  RestoreLEDsState();
  return status != 0;
}

int ClFutronicBaseSDK::CaptureFuzzyImage(unsigned char* buffer) {
  const Lock lock(m_cScannerLock);
  const int status = Api()->ftrScanGetBacklightImage(ftrHandle, buffer);
  RestoreLEDsState();
  return status;
}

int ClFutronicBaseSDK::IsFingerPresent() {
  const Lock lock(m_cScannerLock);
  return Api()->ftrScanIsFingerPresent(ftrHandle, nullptr);
}

bool ClFutronicBaseSDK::SetLongImage() {
  OSV_LOG(OsvLFTrace, "ClFutronicBaseSDK::SetLongImage is called");
  return Api()->ftrScanSetOptions(ftrHandle, kLongImageOption, kLongImageOption) != 0;
}

bool ClFutronicBaseSDK::SetOptions(unsigned long mask, unsigned long flags) {
  const Lock lock(m_cScannerLock);
  return Api()->ftrScanSetOptions(ftrHandle, static_cast<std::uint32_t>(mask),
                                  static_cast<std::uint32_t>(flags)) != 0;
}

bool ClFutronicBaseSDK::GetOptions(unsigned int* flags) {
  const Lock lock(m_cScannerLock);
  return Api()->ftrScanGetOptions(ftrHandle, flags) != 0;
}

bool ClFutronicBaseSDK::GetEPROMSize(int* size) {
  const Lock lock(m_cScannerLock);
  RequireExtendedMemory();
  return Api()->ftrScanGetExtMemorySize(ftrHandle, size) != 0;
}

void ClFutronicBaseSDK::ReadRaw(void* data, unsigned long count) {
  const Lock lock(m_cScannerLock);
  RequireExtendedMemory();
  if (Api()->ftrScanRestoreExtMemory(ftrHandle, data, m_nReadPos,
                                     static_cast<std::uint32_t>(count)) == 0) {
    ThrowMemoryError();
  }
  m_nReadPos += count;
}

void ClFutronicBaseSDK::WriteRaw(const void* data, unsigned long count) {
  const Lock lock(m_cScannerLock);
  RequireExtendedMemory();
  if (Api()->ftrScanSaveExtMemory(ftrHandle, const_cast<void*>(data), m_nWritePos,
                                  static_cast<std::uint32_t>(count)) == 0) {
    ThrowMemoryError();
  }
  m_nWritePos += count;
}

void ClFutronicBaseSDK::RequireExtendedMemory() {
  if (Api()->m_nApiLevel == 0) {
    throw_not_supported();
  }
}

void ClFutronicBaseSDK::ThrowMemoryError() {
  if (GetLastError() == kErrorNotSupported) {
    throw_not_supported();
  }
  throw CXSystemException();
}

void ClFutronicBaseSDK::ResetStream() {
  m_nWritePos = 0;
  m_nReadPos = 0;
}

bool ClFutronicBaseSDK::GetEPROMData(unsigned char* data) {
  const Lock lock(m_cScannerLock);
  return Api()->ftrScanRestore7ControlBytes(ftrHandle, data) != 0;
}

bool ClFutronicBaseSDK::PutEPROMData(unsigned char* data) {
  const Lock lock(m_cScannerLock);
  return Api()->ftrScanSave7Bytes(ftrHandle, data) != 0;
}

bool ClFutronicBaseSDK::GetSerialNumber(std::string& serialNumber) {
  const Lock lock(m_cScannerLock);
  // The library may write more than the serial number: in a list it gets a whole record.
  DeviceInfo info{};
  const auto api = Api();
  if (api->m_nApiLevel == 1 && api->ftrScanGetSerialNumber(ftrHandle, &info) == 0) {
    return false;
  }
  serialNumber.assign(info.szSerialNumber, kSerialSize);
  return true;
}

bool ClFutronicBaseSDK::SetSerialNumber(const std::string& serialNumber) {
  const Lock lock(m_cScannerLock);
  std::array<unsigned char, 1 + kSerialSize + 1> block{kSerialTag};
  const auto first = block.begin() + 1;
  const auto last = first + kSerialSize;
  std::copy_n(serialNumber.begin(), std::min(serialNumber.size(), kSerialSize), first);
  block.back() = static_cast<unsigned char>(std::accumulate(first, last, 0));
  return Api()->ftrScanSaveSerialNumber(ftrHandle, block.data()) != 0;
}

void ClFutronicBaseSDK::GetDeviceVersions(std::string& first, std::string& second,
                                          std::string& /*third*/) {
  const Lock lock(m_cScannerLock);
  first.clear();
  const auto api = Api();
  if (api->ftrScanGetVersion == nullptr) {
    return;
  }
  ftrScanVersionRecord record{};
  record.nSize = sizeof(record);
  if (api->ftrScanGetVersion(ftrHandle, &record) == 0) {
    return;
  }
  first = version_text(record.aSecond);
  second = version_text(record.aThird);
}

bool ClFutronicBaseSDK::SwitchRedLED(bool on) {
  const Lock lock(m_cScannerLock);
  return SwitchLEDState(kRedLED, on);
}

bool ClFutronicBaseSDK::SwitchGreenLED(bool on) {
  const Lock lock(m_cScannerLock);
  return SwitchLEDState(kGreenLED, on);
}

bool ClFutronicBaseSDK::SwitchLEDState(unsigned int led, bool on) {
  (led == kGreenLED ? m_nGreenLED : m_nRedLED) = on ? kLEDOn : std::uint8_t{0};
  return Api()->ftrScanSetDiodesStatus(ftrHandle, m_nGreenLED, m_nRedLED) != 0;
}

bool ClFutronicBaseSDK::RestoreLEDsState() {
  if (m_nGreenLED == 0 && m_nRedLED == 0) {
    return true;
  }
  return Api()->ftrScanSetDiodesStatus(ftrHandle, m_nGreenLED, m_nRedLED) != 0;
}

unsigned long ClFutronicBaseSDK::GetLastError() {
  const Lock lock(m_cScannerLock);
  const std::uint32_t code = Api()->ftrScanGetLastError();
  return code == kErrorNoDevice ? lx::error_number::NotConnected : code;
}

void ClFutronicBaseSDK::SetLastError(unsigned long code) {
  Api()->ftrScanSetLastError(static_cast<std::uint32_t>(code));
}

bool ClFutronicBaseSDK::LoggingEnable(unsigned short /*level*/, const char* /*path*/) {
  const Lock lock(m_cScannerLock);
  if (ApiLevel() <= 1) {
    OSV_LOG(OsvLFWarning,
            "The installed version of KR9ScanAPI doesn't support the logging facility");
  }
  return true;
}

bool ClFutronicBaseSDK::LoggingDisable() {
  const Lock lock(m_cScannerLock);
  return true;
}

bool ClFutronicBaseSDK::SetNewAuthorizationCode(void* code) {
  const auto api = Api();
  return present(api->ftrScanSetNewAuthorizationCode)(ftrHandle, code) == kSecretAccepted;
}

bool ClFutronicBaseSDK::SaveSecret7Bytes(void* code, void* bytes) {
  const auto api = Api();
  return present(api->ftrScanSaveSecret7Bytes)(ftrHandle, code, bytes) == kSecretAccepted;
}

bool ClFutronicBaseSDK::RestoreSecret7Bytes(void* code, void* bytes) {
  const auto api = Api();
  return present(api->ftrScanRestoreSecret7Bytes)(ftrHandle, code, bytes) == kSecretAccepted;
}

}  // namespace Osv
