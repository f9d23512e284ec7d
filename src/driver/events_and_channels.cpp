#include <cstring>

#include "driver/get_item.h"
#include "driver/ostrevan_hvk3_sdk.h"
#include "foundation/exceptions.h"
#include "foundation/logging_client.h"
#include "ostrevanhvk3/errors.h"

namespace Osv::lx {
namespace {

constexpr unsigned int kScore = 0;
constexpr unsigned int kScoreAndState = 1;

}  // namespace

void ClOstrevanHVK3SDK::CurrentFrameInfo(unsigned long /*unused*/, unsigned int type, void* info) {
  if (info == nullptr) {
    throw ClLXException("", error_number::NullPointer);
  }
  if (type != kScore && type != kScoreAndState) {
    const std::string text = "The frame information type ID[" + std::to_string(type) +
                             "] isn't supported by the frame grabber";
    throw ClLXException(text.c_str(), error_number::FrameInfoType);
  }
  const double score = m_dLifeness;
  std::memcpy(info, &score, sizeof(score));
  if (type == kScoreAndState) {
    const int state = m_nLifenessState;
    std::memcpy(static_cast<unsigned char*>(info) + sizeof(score), &state, sizeof(state));
  }
}

void ClOstrevanHVK3SDK::EnableEvents(int /*unused*/, unsigned int handle, ClEventCallback callback,
                                     void* user) {
  OSV_LOG(OsvLFTrace, "KR9 scanner. Enabling of KR9 scanner events.");
  m_cEvents.Set(static_cast<int>(handle), callback, user);
}

void ClOstrevanHVK3SDK::OnFakeFinger() {
  const CXEventLock::Inside inside(m_cEventLock);
  m_cEvents.Fire(m_nEventChannel, eFG_HVK3_FakeFinger);
}

void ClOstrevanHVK3SDK::SetCamera(unsigned int channel, eCameraIDs camera, eColorModeIDs mode) {
  InitializeScanner();
  OSV_LOG(OsvLFTrace, "KR9 scanner. SetCamera. Channel number: %d, camera ID: %d, color mode: %d",
          channel, camera, mode);
  if (mode != eColorModeGray) {
    throw ClLXException(error_text::ColorMode, error_number::ColorMode);
  }
  get_item(m_cChannels, channel).SetCamera(camera, eColorModeGray);
}

void ClOstrevanHVK3SDK::SetFilter(unsigned int channel, eFilterIDs filter) {
  OSV_LOG(OsvLFTrace, "KR9 scanner. Calling SetFilter function. Channel number: %d, filter ID: %d",
          channel, filter);
  get_item(m_cChannels, channel).SetFilter(filter);
}

void ClOstrevanHVK3SDK::SetResolution(unsigned int channel, const ClImageResolution& resolution) {
  OSV_LOG(OsvLFTrace,
          "KR scanner. Calling SetResolution function. Channel number: %d, X: %d, Y: %d", channel,
          resolution.get_x(), resolution.get_y());
  get_item(m_cChannels, channel).SetResolution(resolution);
}

void ClOstrevanHVK3SDK::SetAspectRatio(unsigned int channel, double x, double y) {
  get_item(m_cChannels, channel).SetAspectRatio(x, y);
}

void ClOstrevanHVK3SDK::SetCallbacks(unsigned int channel, ClStartCallback start,
                                     ClStopCallback stop) {
  OSV_LOG(OsvLFTrace, "KR9 scanner Setting of start and stop callbacks");
  get_item(m_cChannels, channel).SetCallbacks(start, stop);
}

void ClOstrevanHVK3SDK::RefreshBackGround(unsigned int /*channel*/, ClFramegrabber& /*grabber*/) {}

}  // namespace Osv::lx
