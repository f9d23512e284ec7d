#include "driver/ostrevan_hvk3_sdk.h"

#include <algorithm>
#include <cstring>

#include "driver/get_item.h"
#include "foundation/exceptions.h"
#include "foundation/logging_client.h"
#include "ostrevanhvk3/errors.h"

namespace Osv::lx {
namespace {

constexpr unsigned long kIndexLimit = 0x80000000;
constexpr unsigned long kErrorNoDevice = 259;

TXRelaxed<bool> s_bDefaultCamera = false;

[[noreturn]] void throw_index() {
  throw ClLXException(error_text::DeviceIndex, error_number::DeviceIndex);
}

}  // namespace

unsigned long MultiStringCpy(const ClMultiString& text, char* buffer, unsigned long& size) {
  const unsigned long needed = text.Length() + 1;
  const bool fits = needed <= size;
  size = needed;
  if (!fits) {
    return error_number::BufferTooSmall;
  }
  if (buffer == nullptr) {
    return error_number::NullPointer;
  }
  if (!text.IsEmpty()) {
    std::memcpy(buffer, text.Buffer(), needed);
  }
  buffer[needed - 1] = '\0';
  return 0;
}

ClOstrevanHVK3SDK::ClOstrevanHVK3SDK(void* context)
    : m_pScanner(std::make_unique<ClFutronicBaseSDK>()),
      m_pLiveDetection(std::make_unique<CLiveDetection>()),
      m_cChannels(1, ClOstrevanHVK3Channel()),
      m_pContext(context) {
  RegisterLFCallbacks();
  // A failure for want of memory is to find room for its text.
  m_sLastError.reserve(CXOtherException::kMaxText);
  m_cChannels.front().m_nChannel = 1;
}

ClOstrevanHVK3SDK::~ClOstrevanHVK3SDK() {
  UnregisterLFCallbacks();
  FreeSDK();
  m_pLiveDetection->Uninit();
}

unsigned long ClOstrevanHVK3SDK::InitializeSDK(ClFrameGrabberChannel& /*channel*/) {
  if (InitializeScanner() != 0) {
    ThrowDeviceError("Failed to initialize KR9-scanner.");
  }
  return 0;
}

void ClOstrevanHVK3SDK::UninitializeSDK(ClFrameGrabberChannel& /*channel*/) {}

void ClOstrevanHVK3SDK::StartLiveCapturing(ClFrameGrabberChannel& /*channel*/) {}

void ClOstrevanHVK3SDK::StopLiveCapturing(ClFrameGrabberChannel& /*channel*/) {}

bool ClOstrevanHVK3SDK::Lock() { return true; }

void ClOstrevanHVK3SDK::UnLock() {}

unsigned long ClOstrevanHVK3SDK::InitializeScanner() {
  if (m_bInitialized) {
    return 0;
  }
  m_nImageDataFormat = 1;
  m_cSetting.LoadFromFile(kConfigurationFile);
  return m_nActiveScanner == kNoActiveScanner ? ChooseFirstScanner() : OpenChosenScanner();
}

unsigned long ClOstrevanHVK3SDK::OpenChosenScanner() {
  const RecursiveLock opening(m_cOpeningLock);
  if (m_bInitialized) {
    return 0;  // by another thread meanwhile
  }
  ++m_nOpening;  // also when it fails: another unit may be open then
  if (!m_pScanner->Initialize()) {
    return m_pScanner->GetLastError();
  }
  SwitchToLongImage();
  RequireExtendedApi();
  m_pCalibration.reset(ReadCalibration());
  m_bInitialized = true;
  return 0;
}

unsigned long ClOstrevanHVK3SDK::ChooseFirstScanner() {
  std::vector<DeviceInfo> list;
  m_pScanner->GetKR9ScannerList(list);
  if (list.empty()) {
    return error_number::NotConnected;
  }
  // Nothing captures yet, so there is nothing to stop. What another thread has chosen meanwhile
  // stays: it may capture by now.
  const RecursiveLock opening(m_cOpeningLock);
  return m_nActiveScanner == kNoActiveScanner ? OpenScanner(list.front().nInterface)
                                              : OpenChosenScanner();
}

void ClOstrevanHVK3SDK::SwitchToLongImage() {
  if (m_pScanner->SetLongImage()) {
    return;
  }
  const unsigned long error = m_pScanner->GetLastError();
  if (error != error_number::ScannerHardware) {
    throw ClLXException("KR9 scanner. Set camara resolution failed.", static_cast<int>(error));
  }
}

void ClOstrevanHVK3SDK::RequireExtendedApi() {
  if (m_pScanner->ApiLevel() == 0) {
    OSV_LOG(OsvLFTrace,
            "KR9 scanner. The base version of API was detected. The extended memory couldn't be "
            "used.");
    throw ClLXException(error_text::ApiVersion, error_number::ApiVersion);
  }
  OSV_LOG(OsvLFTrace, "KR9 scanner. The extended memory was detected.");
}

std::shared_ptr<CXCalibration> ClOstrevanHVK3SDK::ReadCalibration() {
  try {
    return std::make_shared<CXCalibration>(*m_pScanner);
  } catch (const ClHeaderFormatException& failure) {
    OSV_LOG(OsvLFError, "KR9 scanner. HeaderFormatException: %s", failure.GetDescription());
    throw ClLXException(failure.GetDescription(), error_number::CalibrationCorrupt);
  }
}

std::shared_ptr<CXCalibration> ClOstrevanHVK3SDK::Calibration() const {
  std::shared_ptr<CXCalibration> calibration = m_pCalibration.get();
  if (calibration == nullptr) {
    throw ClLXException(error_text::NotConnected, error_number::NotConnected);
  }
  return calibration;
}

void ClOstrevanHVK3SDK::UninitializeScanner() {
  const RecursiveLock unit(m_cUnitLock);
  const RecursiveLock opening(m_cOpeningLock);
  if (m_bInitialized) {
    m_pScanner->Unitialize();
    m_bInitialized = false;
  }
}

unsigned long ClOstrevanHVK3SDK::SetActiveScanner(unsigned long index) {
  if (index >= kIndexLimit) {
    throw_index();
  }
  if (index == m_nActiveScanner) {
    return 0;
  }
  StopAllChannel();
  return ChangeScanner(index);
}

/// One step for other threads: an opening in the midst of it would be closed by the choice and
/// count as open all the same.
unsigned long ClOstrevanHVK3SDK::ChangeScanner(unsigned long index) {
  const RecursiveLock unit(m_cUnitLock);
  const RecursiveLock opening(m_cOpeningLock);
  UninitializeScanner();
  return OpenScanner(index);
}

unsigned long ClOstrevanHVK3SDK::OpenScanner(unsigned long index) {
  SelectInterface(index);
  m_nActiveScanner = static_cast<unsigned int>(index);
  return InitializeScanner();
}

void ClOstrevanHVK3SDK::SelectInterface(unsigned long index) {
  if (!m_pScanner->IsKR9Scanner(static_cast<int>(index))) {
    throw_index();
  }
  if (m_pScanner->SetScanInterface(index)) {
    return;
  }
  const unsigned long error = m_pScanner->GetLastError();
  if (error == kErrorNoDevice || error == error_number::NotConnected) {
    throw_index();
  }
  throw ClLXException("SetActiveScanner failed", static_cast<int>(error));
}

bool ClOstrevanHVK3SDK::GetActiveScanner(unsigned long& index) {
  if (!m_pScanner->GetScanInterface(index)) {
    ThrowDeviceError("GetActiveScanner failed.");
  }
  return true;
}

unsigned long ClOstrevanHVK3SDK::AvailableScanners(DeviceInfo* list, unsigned long& count) {
  const Guard guard(m_cLock);
  if (count != 0 && list == nullptr) {
    return error_number::NullPointer;
  }
  std::vector<DeviceInfo> scanners;
  m_pScanner->GetKR9ScannerList(scanners);
  const bool fits = count >= scanners.size();
  count = scanners.size();
  if (!fits) {
    return error_number::BufferTooSmall;
  }
  std::copy(scanners.begin(), scanners.end(), list);
  return 0;
}

void ClOstrevanHVK3SDK::FreeSDK() {
  const Guard guard(m_cLock);
  StopAllChannel();
}

unsigned long ClOstrevanHVK3SDK::ReadSDKInfo() {
  OSV_LOG(OsvLFTrace, "KR9 scanner. Calling ReadSDKInfo function.");
  if (!m_cSDKInfo.IsEmpty()) {
    return 0;
  }
  if (const unsigned long result = InitializeScanner(); result != 0) {
    return result;
  }
  // The name stays when the serial number can't be read, and the next call delivers it alone.
  m_cSDKInfo.Add("Ostrevan KR9 scanner");
  ReadSerialNumber();
  AddVersion();
  return 0;
}

void ClOstrevanHVK3SDK::ReadSerialNumber() {
  std::string serialNumber;
  if (!m_pScanner->GetSerialNumber(serialNumber)) {
    ThrowDeviceError("Could not read the serial number of the scanner.");
  }
  m_cSDKInfo.Add(serialNumber.c_str());
}

void ClOstrevanHVK3SDK::AddVersion() {
  std::string first;
  std::string second;
  std::string third;
  m_pScanner->GetDeviceVersions(first, second, third);
  if (first.empty()) {
    m_cSDKInfo.Add(GetRevisionStr().c_str());
  } else {
    m_cSDKInfo.Add(first.c_str());
    m_cSDKInfo.Add(second.c_str());
  }
}

unsigned long ClOstrevanHVK3SDK::GetSDKInfo(char* buffer, unsigned long& size) {
  const Guard guard(m_cLock);
  const unsigned long result = ReadSDKInfo();
  return result != 0 ? result : MultiStringCpy(m_cSDKInfo, buffer, size);
}

std::string ClOstrevanHVK3SDK::GetRevisionStr() const {
  const auto calibration = m_pCalibration.get();
  return calibration == nullptr || calibration->Revision().empty() ? "1" : calibration->Revision();
}

unsigned long ClOstrevanHVK3SDK::StartCapture(int handle, unsigned int channel,
                                              eCaptureModeIDs mode, ClLiveImageCallback liveImage,
                                              ClDetectedFingerCallback finger,
                                              ClErrorCallback error, ClWarningCallback warning,
                                              void* user) {
  ClFrameGrabberChannel::m_pFramegrabberSDK = this;
  OSV_LOG(OsvLFTrace,
          "KR9 scanner. Calling StartCapture. Framegrabber handle: %d, channel number: %d, "
          "capture mode ID: %d",
          handle, channel, mode);
  if (const unsigned long result = InitializeScanner(); result != 0) {
    return result;
  }
  SetDefaultCamera(channel);
  get_item(m_cChannels, channel)
      .StartCapture(handle, mode, liveImage, finger, error, warning, user);
  return 0;
}

bool ClOstrevanHVK3SDK::StopCapture(unsigned int channel) {
  OSV_LOG(OsvLFTrace, "KR9 scanner. Calling StopCapture function. Channel number: %d", channel);
  return StopChannel(get_item(m_cChannels, channel));
}

void ClOstrevanHVK3SDK::StopAllChannel() {
  for (ClOstrevanHVK3Channel& channel : m_cChannels) {
    StopChannel(channel);
  }
}

/// In the event of a snap the client's thread has the lock that the worker wants for its frame.
bool ClOstrevanHVK3SDK::StopChannel(ClOstrevanHVK3Channel& channel) {
  if (channel.IsCurrentThread()) {
    return channel.StopCapture();  // waits for nobody
  }
  const CXEventLock::Pause pause(m_cEventLock);
  return channel.StopCapture();
}

void ClOstrevanHVK3SDK::Freeze(unsigned int channel, bool enable) {
  OSV_LOG(OsvLFTrace, "KR9 scanner. Calling Freeze function. Channel number: %d, enable: %d",
          channel, enable);
  get_item(m_cChannels, channel).m_bFreeze = enable;
}

void ClOstrevanHVK3SDK::SetDefaultCamera(unsigned int /*channel*/) { s_bDefaultCamera = true; }

void ClOstrevanHVK3SDK::ThrowDeviceError(const char* text) {
  throw ClLXException(text, static_cast<int>(m_pScanner->GetLastError()));
}

}  // namespace Osv::lx
