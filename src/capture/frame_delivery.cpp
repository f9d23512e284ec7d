// The road of a frame, a failure or a warning from the worker to the client's callbacks.

#include <algorithm>
#include <array>
#include <cstdio>
#include <new>
#include <string>

#include "capture/capture_channel.h"
#include "foundation/exceptions.h"
#include "foundation/image_functions.h"

namespace Osv::lx {
namespace {

constexpr unsigned long kRowMargin = 50;
constexpr char kNamelessFailure[] = "Scanner capturing failed";

// A failure's own words, and room for the number behind them.
constexpr int kPlainWords = static_cast<int>(CXOtherException::kMaxText);
constexpr std::size_t kPlainTextSize = kPlainWords + 32;

/// Keeps blank images from the client: true when the middle row shows anything but black between
/// its margins. An image without a pixel between them is blank.
bool middle_row_shows(const utilities::ClSimpleBitmap& image) {
  const unsigned long width = std::min(image.Width(), image.BPRow());
  if (width <= 2 * kRowMargin || image.Height() == 0) {
    return false;
  }
  const unsigned char* const row = image.Pixel() + image.Height() / 2 * image.BPRow();
  return !img::all_zero(row + kRowMargin, width - 2 * kRowMargin);
}

unsigned char* block_of(const utilities::ClSimpleBitmap& image) {
  return reinterpret_cast<unsigned char*>(image.BI());
}

}  // namespace

void ClFrameGrabberChannel::CXCallbacks::Set(ClStartCallback start, ClStopCallback stop) {
  const std::lock_guard<CXMutex> lock(m_Mutex);
  m_pfnStart = start;
  m_pfnStop = stop;
}

void ClFrameGrabberChannel::CXCallbacks::OnStart(int handle, unsigned int channel, void* user) {
  const std::lock_guard<CXMutex> lock(m_Mutex);
  if (m_pfnStart != nullptr) {
    m_pfnStart(handle, channel, user);
  }
}

void ClFrameGrabberChannel::CXCallbacks::OnStop(int handle, unsigned int channel, void* user) {
  const std::lock_guard<CXMutex> lock(m_Mutex);
  if (m_pfnStop != nullptr) {
    m_pfnStop(handle, channel, user);
  }
}

void ClFrameGrabberChannel::SendBitmapToClient(utilities::ClSimpleBitmap& frame, bool detect) {
  if (DoImageProcessing()) {
    SendProcessed(frame, detect);
  } else {
    SendUnchanged(frame, detect);
  }
}

void ClFrameGrabberChannel::SendUnchanged(utilities::ClSimpleBitmap& frame, bool detect) {
  if (GetCaptureMode() != eCaptureRolled) {
    CallbackLiveImage(frame);
  }
  if (GetCaptureMode() == eCaptureLive || GetCaptureMode() == eCapturePreview) {
    return;
  }
  if (!detect) {
    CallbackDetectedFinger(frame);
    return;
  }
  utilities::ClSimpleBitmap out;
  if (DoDetect(frame, out)) {
    CallbackDetectedFinger(out);
  }
}

void ClFrameGrabberChannel::SendProcessed(utilities::ClSimpleBitmap& frame, bool detect) {
  if (m_bDirty) {
    m_Background.Copy(frame.BI());  // as it came: the background is not turned
    m_bDirty = false;
  }
  frame.FlipY();
  if (GetCaptureMode() == eCapturePreview) {
    CallbackDetectedFinger(frame);
    return;
  }
  if (GetCaptureMode() != eCaptureRolled) {
    CallbackLiveImage(frame);
  }
  if (GetCaptureMode() == eCaptureLive) {
    return;
  }
  if (!detect) {
    CallbackDetectedFinger(frame);
    return;
  }
  utilities::ClSimpleBitmap out;
  if (DoDetect(frame, out)) {
    CallbackDetectedFinger(out);
  } else {
    CallbackLiveImage(out);  // the working image, such as a rolled print being assembled
  }
}

void ClFrameGrabberChannel::CallbackDetectedFinger(utilities::ClSimpleBitmap& image) {
  if (m_pfnFinger != nullptr && middle_row_shows(image)) {
    m_pfnFinger(m_nHandle, m_nChannel, static_cast<int>(GetCaptureMode()), block_of(image),
                m_pUserData);
  }
}

/// An empty bitmap has no block to show, so there is no call.
void ClFrameGrabberChannel::CallbackLiveImage(const utilities::ClSimpleBitmap& image) {
  if (m_pfnLiveImage != nullptr && !image.Empty()) {
    m_pfnLiveImage(m_nHandle, m_nChannel, block_of(image), m_pUserData);
  }
}

bool ClFrameGrabberChannel::DoDetect(utilities::ClSimpleBitmap& in,
                                     utilities::ClSimpleBitmap& out) {
  return !SDK().SupressFingerDetection() && m_pDetection->Detect(in, out);
}

void ClFrameGrabberChannel::SendError(const char* text, long number) {
  if (m_pfnError == nullptr) {
    return;
  }
  const char* const words = text == nullptr ? kNamelessFailure : text;
  std::string message;
  std::array<char, kPlainTextSize> plain;
  const char* told = nullptr;
  try {
    message = std::string(words) + " error: " + std::to_string(number);
    told = message.c_str();
  } catch (const std::bad_alloc&) {
    // The client is told all the same. Only words that no failure of this system has are cut.
    std::snprintf(plain.data(), plain.size(), "%.*s error: %ld", kPlainWords, words, number);
    told = plain.data();
  }
  m_pfnError(m_nHandle, m_nChannel, told, m_pUserData);
}

void ClFrameGrabberChannel::SendWarning(const char* text, long /*number*/) {
  if (m_pfnWarning != nullptr) {
    m_pfnWarning(m_nHandle, m_nChannel, text, m_pUserData);
  }
}

}  // namespace Osv::lx
