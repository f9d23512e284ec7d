#include "boundary/hvk3_framegrabber.h"

#include "boundary/string_copy.h"
#include "foundation/logging_client.h"

namespace Osv::lx {
namespace {

constexpr unsigned long kNoSuchOperation = error_number::NotSupported;
constexpr unsigned long kNoDialogs = error_number::HardwareVersion;
constexpr unsigned int kFeatureChannel = 1;

}  // namespace

ClOstrevanHVK3Framegrabber::ClOstrevanHVK3Framegrabber(void* context)
    : ClOstrevanHVK3SDK(context), m_Version(2, 0, 1425, 2) {
  ClOstrevanHVK3Framegrabber::Initizalize();
  m_vCameras = {eCamera8};
  m_vColorModes = {eColorModeGray};
  m_vDetections = {eCaptureLive, eCapturePlain};
  m_vFilters = {eFilterNone};
  m_vProperties = {ePropChannelCount, ePropLiveliness,    ePropRedLED,
                   ePropGreenLED,     ePropFakeDetection, ePropLowContrastImage};
}

unsigned long ClOstrevanHVK3Framegrabber::Initizalize() {
  try {
    utilities::ClLoggingFacilityClient::Create();
  } catch (const std::exception&) {
    // No logging facility on this system: the plug-in is silent.
  }
  return 0;
}

unsigned long ClOstrevanHVK3Framegrabber::Uninitialize() {
  return Translated([&] {
    FreeSDK();
    utilities::ClLoggingFacilityClient::Destroy();
    return 0UL;
  });
}

void ClOstrevanHVK3Framegrabber::Destroy(ClOstrevanHVK3Framegrabber* grabber) {
  if (grabber == nullptr || !grabber->IsInsideEvent()) {
    delete grabber;
    return;
  }
  grabber->StopAllChannel();  // first: an image that its last callback takes is another one
  grabber->m_bGoesWithImage = true;
}

void ClOstrevanHVK3Framegrabber::FreezeSDK(ClFrameGrabberChannel& /*channel*/, bool /*enable*/) {}

unsigned long ClOstrevanHVK3Framegrabber::Stored(unsigned long number, const char* text) {
  return BoundaryResult(SetLastFGError(number, text));
}

unsigned long ClOstrevanHVK3Framegrabber::ScannerResult(unsigned long result) {
  if (result == 0) {
    return 0;
  }
  const bool missing = result == error_number::NotConnected;
  return Stored(result, missing ? error_text::NotConnected : error_text::InitializationFailed);
}

template <typename Operation>
unsigned long ClOstrevanHVK3Framegrabber::OnChannel(unsigned int channel, Operation operation) {
  if (get_channel_count() < channel) {
    return Stored(error_number::IncorrectChannel, error_text::IncorrectChannel);
  }
  return operation();
}

unsigned long ClOstrevanHVK3Framegrabber::GetInfo(char* text, unsigned long& size) {
  return Translated([&] {
    const unsigned long result = GetSDKInfo(text, size);
    return result == 0 ? 0 : Stored(result, error_text::MoreData);
  });
}

unsigned long ClOstrevanHVK3Framegrabber::GetVersion(char* text, unsigned long& size) {
  return Translated([&] {
    unsigned long copied = size;
    const unsigned long result = m_Version.Version(text, copied);
    size = copied;
    return BoundaryResult(result);
  });
}

unsigned long ClOstrevanHVK3Framegrabber::FreeImage(unsigned char* image) {
  delete[] image;
  return 0;
}

unsigned long ClOstrevanHVK3Framegrabber::GetLastError(char* text, unsigned long& size) {
  return WithLastErrorText(
      [&](const char* stored) { return BoundaryResult(StringCpy(stored, text, size)); });
}

unsigned long ClOstrevanHVK3Framegrabber::SetCamera(unsigned int channel, eCameraIDs camera,
                                                    eColorModeIDs mode) {
  return Translated([&] {
    // A bad camera is reported and selected all the same.
    const unsigned long result =
        CameraCheck(camera) ? 0 : Stored(error_number::UnknownCamera, error_text::UnknownCamera);
    ClOstrevanHVK3SDK::SetCamera(channel, camera, mode);
    return result;
  });
}

unsigned long ClOstrevanHVK3Framegrabber::GetImage(unsigned int channel, unsigned char** image) {
  const unsigned long number = Translated([&] {
    const unsigned long result = Snap(channel, image);
    return result == 0 ? 0 : Stored(result, error_text::GetImageFailed);
  });
  if (m_bGoesWithImage && !IsInsideEvent()) {
    delete this;
  }
  return number;
}

unsigned long ClOstrevanHVK3Framegrabber::StartCapture(
    int handle, unsigned int channel, eCaptureModeIDs mode, ClLiveImageCallback liveImage,
    ClDetectedFingerCallback finger, ClErrorCallback error, ClWarningCallback warning, void* user) {
  return Translated([&] {
    if (!DetectionCheck(mode)) {
      return Stored(error_number::UnknownDetection, error_text::UnknownDetection);
    }
    const unsigned long result = ClOstrevanHVK3SDK::StartCapture(handle, channel, mode, liveImage,
                                                                 finger, error, warning, user);
    return result == 0 ? 0 : Stored(result, error_text::StartFailed);
  });
}

unsigned long ClOstrevanHVK3Framegrabber::StopCapture(unsigned int channel) {
  return Translated([&] {
    ClOstrevanHVK3SDK::StopCapture(channel);
    return 0UL;
  });
}

unsigned long ClOstrevanHVK3Framegrabber::SetFilter(unsigned int channel, eFilterIDs filter) {
  return Translated([&] {
    // A bad filter is reported and set all the same.
    const unsigned long result =
        FilterCheck(filter) ? 0 : Stored(error_number::UnknownFilter, error_text::UnknownFilter);
    ClOstrevanHVK3SDK::SetFilter(channel, filter);
    return result;
  });
}

unsigned long ClOstrevanHVK3Framegrabber::RefreshBackGround(unsigned int channel) {
  return Translated([&] {
    ClOstrevanHVK3SDK::RefreshBackGround(channel, *this);
    return 0UL;
  });
}

unsigned long ClOstrevanHVK3Framegrabber::SetResolution(unsigned int /*channel*/,
                                                        const ClImageResolution& /*resolution*/) {
  return Stored(error_number::NotSupported, error_text::NotSupported);
}

unsigned long ClOstrevanHVK3Framegrabber::SetFGProperty(ePropertyIDs property, unsigned int value) {
  return Translated([&] { return ScannerResult(SetProperty(property, value)); });
}

unsigned long ClOstrevanHVK3Framegrabber::GetFGProperty(ePropertyIDs property,
                                                        unsigned int& value) {
  return Translated([&] { return ScannerResult(GetProperty(property, value)); });
}

unsigned long ClOstrevanHVK3Framegrabber::Freeze(unsigned int channel, bool enable) {
  return Translated([&] {
    ClOstrevanHVK3SDK::Freeze(channel, enable);
    return 0UL;
  });
}

unsigned long ClOstrevanHVK3Framegrabber::AvailableCameras(eCameraIDs* list, unsigned long& count) {
  return Translated(
      [&] { return BoundaryResult(ClFramegrabberImpl::AvailableCameras(list, count)); });
}

unsigned long ClOstrevanHVK3Framegrabber::AvailableColorModes(eColorModeIDs* list,
                                                              unsigned long& count) {
  return Translated(
      [&] { return BoundaryResult(ClFramegrabberImpl::AvailableColorModes(list, count)); });
}

unsigned long ClOstrevanHVK3Framegrabber::AvailableDetections(eCaptureModeIDs* list,
                                                              unsigned long& count) {
  return Translated(
      [&] { return BoundaryResult(ClFramegrabberImpl::AvailableDetections(list, count)); });
}

unsigned long ClOstrevanHVK3Framegrabber::AvailableFilters(eFilterIDs* list, unsigned long& count) {
  return Translated(
      [&] { return BoundaryResult(ClFramegrabberImpl::AvailableFilters(list, count)); });
}

unsigned long ClOstrevanHVK3Framegrabber::AvailableProperties(ePropertyIDs* list,
                                                              unsigned long& count) {
  return Translated(
      [&] { return BoundaryResult(ClFramegrabberImpl::AvailableProperties(list, count)); });
}

unsigned long ClOstrevanHVK3Framegrabber::EnableEvents(int unused, unsigned int handle,
                                                       ClEventCallback callback, void* user) {
  return Translated([&] {
    ClOstrevanHVK3SDK::EnableEvents(unused, handle, callback, user);
    return 0UL;
  });
}

unsigned long ClOstrevanHVK3Framegrabber::WriteEEPROM(const unsigned char* /*data*/,
                                                      unsigned long& /*size*/) {
  return kNoSuchOperation;
}

unsigned long ClOstrevanHVK3Framegrabber::ReadEEPROM(unsigned char* /*data*/,
                                                     unsigned long& /*size*/) {
  return kNoSuchOperation;
}

unsigned long ClOstrevanHVK3Framegrabber::SetAspectRatio(unsigned int /*channel*/, double /*x*/,
                                                         double /*y*/) {
  return kNoSuchOperation;
}

unsigned long ClOstrevanHVK3Framegrabber::AvailableDevices(DeviceInfo* list, unsigned long& count) {
  return Translated([&] { return ScannerResult(AvailableScanners(list, count)); });
}

unsigned long ClOstrevanHVK3Framegrabber::SetActiveDevice(unsigned long index) {
  return Translated([&] { return ScannerResult(SetActiveScanner(index)); });
}

unsigned long ClOstrevanHVK3Framegrabber::GetActiveDevice(unsigned long& index) {
  return Translated([&] {
    GetActiveScanner(index);
    return 0UL;
  });
}

unsigned long ClOstrevanHVK3Framegrabber::ShowDialog(eDlgIDs /*dialog*/, unsigned long /*parent*/) {
  return kNoDialogs;
}

unsigned long ClOstrevanHVK3Framegrabber::SaveSetting(unsigned int /*channel*/,
                                                      unsigned long /*setting*/) {
  return kNoDialogs;
}

unsigned long ClOstrevanHVK3Framegrabber::AvailableDialogs(unsigned long /*channel*/,
                                                           eDlgIDs* /*list*/,
                                                           unsigned long& /*count*/) {
  return kNoDialogs;
}

unsigned long ClOstrevanHVK3Framegrabber::SetFGPropertyEx(unsigned int channel,
                                                          ePropertyIDs property,
                                                          unsigned long value) {
  return OnChannel(channel,
                   [&] { return SetFGProperty(property, static_cast<unsigned int>(value)); });
}

unsigned long ClOstrevanHVK3Framegrabber::GetFGPropertyEx(unsigned int channel,
                                                          ePropertyIDs property,
                                                          unsigned long& value) {
  return OnChannel(channel, [&] {
    constexpr unsigned long kHighBits = 0xFFFFFFFF00000000UL;
    auto low = static_cast<unsigned int>(value);
    const unsigned long result = GetFGProperty(property, low);
    value = (value & kHighBits) | low;
    return result;
  });
}

unsigned long ClOstrevanHVK3Framegrabber::AvailablePropertiesEx(ePropertyIDs* list,
                                                                unsigned long& count) {
  return AvailableProperties(list, count);
}

unsigned long ClOstrevanHVK3Framegrabber::SetCallbacks(unsigned int channel, ClStartCallback start,
                                                       ClStopCallback stop) {
  return Translated([&] {
    ClOstrevanHVK3SDK::SetCallbacks(channel, start, stop);
    return 0UL;
  });
}

unsigned long ClOstrevanHVK3Framegrabber::ContaminationDetection(unsigned long channel,
                                                                 double* level) {
  return Translated([&] {
    return ScannerResult(
        ClOstrevanHVK3SDK::ContaminationDetection(static_cast<unsigned int>(channel), level));
  });
}

unsigned long ClOstrevanHVK3Framegrabber::CurrentFrameInfo(unsigned long reserved,
                                                           unsigned int type, void* info) {
  ClOstrevanHVK3SDK::CurrentFrameInfo(reserved, type, info);
  return 0;
}

unsigned long ClOstrevanHVK3Framegrabber::GetFeature(unsigned int channel,
                                                     osvlx3_feature* feature) {
  if (channel != kFeatureChannel) {
    return error_number::NotConnected;
  }
  return Translated([&] { return ClOstrevanHVK3SDK::GetFeature(feature); });
}

unsigned long ClOstrevanHVK3Framegrabber::SetFeature(unsigned int channel,
                                                     const osvlx3_feature* feature) {
  if (channel != kFeatureChannel) {
    return error_number::NotConnected;
  }
  return Translated([&] { return ClOstrevanHVK3SDK::SetFeature(feature); });
}

}  // namespace Osv::lx
