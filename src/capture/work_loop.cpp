// The worker thread of a channel, from its start to its end.

#include <boost/make_shared.hpp>
#include <mutex>
#include <utility>

#include "capture/capture_channel.h"
#include "foundation/exceptions.h"
#include "ostrevanhvk3/errors.h"

namespace Osv::lx {
namespace {

constexpr int kFreezePollMs = 100;
constexpr int kNumberOfFamily = 1;  // the facade's number for the same exceptions differs

/// Marks the calling thread as the worker of a channel. The mark goes before the thread does: the
/// system gives the number of an ended thread to new ones, a client's among them.
///
/// All marks hang together. A thread-local flag would do as well, but the loader ends the process
/// when it has no memory for a thread's copy of it.
class WorkerMark {
 public:
  explicit WorkerMark(ClFrameGrabberChannel& channel) : m_Channel(channel) {
    m_Channel.SetCurrentThread();
    const std::lock_guard<std::mutex> lock(s_cLock);
    m_pNext = std::exchange(s_pFirst, this);
  }
  WorkerMark(const WorkerMark&) = delete;
  WorkerMark& operator=(const WorkerMark&) = delete;
  ~WorkerMark() {
    const std::lock_guard<std::mutex> lock(s_cLock);
    m_Channel.m_nThreadId = 0;
    WorkerMark** link = &s_pFirst;
    while (*link != this) {
      link = &(*link)->m_pNext;
    }
    *link = m_pNext;
  }

  /// Whether the calling thread has a mark.
  static bool IsHere() {
    const std::lock_guard<std::mutex> lock(s_cLock);
    const WorkerMark* mark = s_pFirst;
    while (mark != nullptr && !mark->m_Channel.IsCurrentThread()) {
      mark = mark->m_pNext;
    }
    return mark != nullptr;
  }

 private:
  static inline std::mutex s_cLock;  // guards the next pointers
  static inline WorkerMark* s_pFirst = nullptr;

  ClFrameGrabberChannel& m_Channel;
  WorkerMark* m_pNext = nullptr;
};

/// The scanner's section of one pass. Its end may throw, as anything of the scanner, unless another
/// failure is on its way.
class Section {
 public:
  explicit Section(ClFramegrabberSDK& sdk) : m_SDK(sdk) { m_SDK.Lock(); }
  Section(const Section&) = delete;
  Section& operator=(const Section&) = delete;
  ~Section() noexcept(false) { m_SDK.UnLock(); }

 private:
  ClFramegrabberSDK& m_SDK;
};

}  // namespace

bool ClFrameGrabberChannel::IsWorkerThread() { return WorkerMark::IsHere(); }

int ClFrameGrabberChannel::Work() {
  const WorkerMark mark(*this);
  if (!m_bRunning) {
    return 0;  // a stop that overtook the thread's start
  }
  boost::shared_ptr<utilities::ClSimpleBitmap> previous;
  try {
    CaptureUntilStopped(previous);
  } catch (const ClLXException& e) {
    SendError(e.GetDescription(), e.GetErrorNumber());
  } catch (const ClOstrevanException& e) {
    SendError(e.What(), kNumberOfFamily);
  } catch (const std::exception& e) {
    SendError(e.what(), error_number::NoNumber);
  }
  previous.reset();
  EndCapture();
  return 0;
}

/// @param previous out: the frame of the capture before, which is to live as long as this one
void ClFrameGrabberChannel::CaptureUntilStopped(
    boost::shared_ptr<utilities::ClSimpleBitmap>& previous) {
  m_Callbacks.OnStart(m_nHandle, m_nChannel, m_pUserData);
  previous = boost::make_shared<utilities::ClSimpleBitmap>();
  previous.swap(m_pCaptureBitmap);
  InitializeScanner();
  RunLoop();
}

void ClFrameGrabberChannel::InitializeScanner() {
  const Section section(SDK());
  SDK().InitializeSDK(*this);
}

void ClFrameGrabberChannel::RunLoop() {
  bool frozen = false;
  while (m_bRunning) {
    if (m_bFreeze) {
      StayFrozen(frozen);
      continue;
    }
    if (std::exchange(frozen, false)) {
      SDK().FreezeSDK(*this, false);
    }
    RunPass();
  }
}

void ClFrameGrabberChannel::StayFrozen(bool& frozen) {
  if (!std::exchange(frozen, true)) {
    SDK().FreezeSDK(*this, true);
  }
  Sleep(kFreezePollMs);
}

/// One frame. A warning ends the pass without its pause, and capture goes on.
void ClFrameGrabberChannel::RunPass() {
  try {
    const Section section(SDK());
    PrepareIfDue(*m_pCaptureBitmap);
    AcquireAndDeliver(*m_pCaptureBitmap);
  } catch (const ClLXWarning& e) {
    SendWarning(e.GetDescription(), e.GetErrorNumber());
    return;
  }
  Sleep(0);
}

void ClFrameGrabberChannel::PrepareIfDue(utilities::ClSimpleBitmap& bitmap) {
  if (SDK().IsDirty(*this) || bitmap.Empty()) {
    SDK().SetActiveChannel(*this, bitmap);
    SDK().StartLiveCapturing(*this);
  }
}

void ClFrameGrabberChannel::AcquireAndDeliver(utilities::ClSimpleBitmap& bitmap) {
  if (GetCaptureMode() == eCapturePlain && SDK().HasSelfDetection(*this)) {
    // Delivered even when a stop has come meanwhile.
    if (SDK().WaitForPlainFinger(*this, bitmap)) {
      SendBitmapToClient(bitmap, false);
    }
  } else if (GetCaptureMode() == eCapturePreview) {
    if (m_bTrigger) {
      DeliverTriggeredImage(bitmap);
    }
  } else {
    SDK().GetLiveBitmap(*this, bitmap);
    if (m_bRunning) {
      SendBitmapToClient(bitmap, true);
    }
  }
}

void ClFrameGrabberChannel::DeliverTriggeredImage(utilities::ClSimpleBitmap& bitmap) {
  SDK().TriggerImage(*this, bitmap);
  if (m_bRunning) {
    SendBitmapToClient(bitmap, false);
  }
  m_bTrigger = false;
}

/// Reached from every end of the loop. What fails here leaves the thread: there is nobody to tell.
void ClFrameGrabberChannel::EndCapture() {
  const Section section(SDK());
  SDK().StopLiveCapturing(*this);
  SDK().UninitializeSDK(*this);
  m_Callbacks.OnStop(m_nHandle, m_nChannel, m_pUserData);
}

}  // namespace Osv::lx
