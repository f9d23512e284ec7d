#include "capture/capture_channel.h"

#include <array>

#include "foundation/exceptions.h"
#include "foundation/logging_client.h"
#include "ostrevanhvk3/errors.h"
#include "ostrevanhvk3/framegrabber.h"

namespace Osv::lx {
namespace {

constexpr unsigned long kErrorTextSize = 255;

[[noreturn]] void throw_last_error(ClFramegrabber& grabber, unsigned long number) {
  std::array<char, kErrorTextSize> text{};
  unsigned long size = text.size();
  grabber.GetLastError(text.data(), size);
  throw ClLXException(text.data(), static_cast<int>(number));
}

}  // namespace

std::atomic<ClFramegrabberSDK*> ClFrameGrabberChannel::m_pFramegrabberSDK{nullptr};

ClFrameGrabberChannel::ClFrameGrabberChannel(const ClFrameGrabberChannel& other)
    : CWin32Thread(),
      m_Camera(other.m_Camera),
      m_nChannel(other.m_nChannel),
      m_bDirty(other.m_bDirty),
      m_bFreeze(other.m_bFreeze),
      m_eColorMode(other.m_eColorMode),
      m_eFilter(other.m_eFilter),
      m_bRunning(other.m_bRunning),
      m_nHandle(other.m_nHandle),
      m_pfnLiveImage(other.m_pfnLiveImage),
      m_pfnError(other.m_pfnError),
      m_pfnFinger(other.m_pfnFinger),
      m_pUserData(other.m_pUserData) {}

ClFrameGrabberChannel::~ClFrameGrabberChannel() {
  Release();
  (void)m_pSDKData.release();  // the driver's to delete
}

bool ClFrameGrabberChannel::StartCapture(int handle, eCaptureModeIDs mode,
                                         ClLiveImageCallback live_image,
                                         ClDetectedFingerCallback finger, ClErrorCallback error,
                                         ClWarningCallback warning, void* user) {
  // A callback that outlasts the client's stop finds the flag clear, but its worker still runs.
  if (IsCurrentThread()) {
    throw ClLXException("", error_number::AlreadyCapturing);
  }
  const std::lock_guard<std::mutex> lock(m_LifecycleMutex);
  if (m_bRunning) {
    throw ClLXException("", error_number::AlreadyCapturing);
  }
  SetDetection(mode);
  m_nHandle = handle;
  m_pfnLiveImage = live_image;
  m_pfnFinger = finger;
  m_pfnError = error;
  m_pfnWarning = warning;
  m_pUserData = user;
  m_bRunning = true;
  const bool started = Start();
  if (!started) {
    OSV_LOG(OsvLFError, "KR9 scanner. The capture thread could not be created. Channel number: %d",
            m_nChannel);
  }
  return started;
}

bool ClFrameGrabberChannel::StopCapture() {
  if (IsCurrentThread()) {
    if (m_bRunning) {
      throw ClLXException(error_text::InvalidState, error_number::InvalidState);
    }
    return true;
  }
  const std::lock_guard<std::mutex> lock(m_LifecycleMutex);
  if (!m_bRunning) {
    return true;
  }
  m_bRunning = false;
  return Stop() == 0;
}

void ClFrameGrabberChannel::RefreshBackGround(ClFramegrabber& grabber) {
  if (m_bRunning) {
    m_bDirty = true;
    return;
  }
  const eFilterIDs filter = m_eFilter;
  SetFilter(eFilterNone);
  unsigned char* block = nullptr;
  const unsigned long result = grabber.GetImage(m_nChannel, &block);
  if (result != 0) {
    throw_last_error(grabber, result);
  }
  utilities::ClSimpleBitmap picture;
  picture.Attach(reinterpret_cast<tagBITMAPINFOHEADER*>(block));
  m_Background.Copy(picture.BI());
  grabber.FreeImage(picture.Detach());
  SetFilter(filter);
}

void ClFrameGrabberChannel::SetCamera(eCameraIDs camera, eColorModeIDs mode) {
  if (mode != eColorModeGray && m_eFilter != eFilterNone) {
    throw ClLXException(error_text::FilterNotApplicable, error_number::FilterNotApplicable);
  }
  ChangeCamera([camera](ClLXCamera& record) { record = ClLXCamera::Create(camera); });
  m_eColorMode = mode;
}

void ClFrameGrabberChannel::SetFilter(eFilterIDs filter) {
  if (m_bRunning && filter != eFilterNone && m_eColorMode != eColorModeGray) {
    throw ClLXException(error_text::FilterNotApplicable, error_number::FilterNotApplicable);
  }
  m_eFilter = filter;
  m_bDirty = true;
}

void ClFrameGrabberChannel::SetResolution(const ClImageResolution& resolution) {
  m_Resolution = resolution;
  m_bDirty = true;
}

void ClFrameGrabberChannel::SetAspectRatio(double /*x*/, double /*y*/) {
  throw ClLXException(error_text::NotSupported, error_number::NotSupported);
}

void ClFrameGrabberChannel::SetDetection(eCaptureModeIDs mode) {
  m_pDetection.reset(ClImageDetection::Create(mode));
  if (m_pDetection == nullptr) {
    throw ClLXException(error_text::NotEnoughStorage, error_number::NotEnoughStorage);
  }
}

bool ClFrameGrabberChannel::CheckCameraSet() const {
  const std::lock_guard<std::mutex> lock(m_CameraMutex);
  return m_Camera.m_eCamera != eCameraIDs{};
}

}  // namespace Osv::lx
