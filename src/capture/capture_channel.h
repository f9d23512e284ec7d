#pragma once

#include <atomic>
#include <boost/shared_ptr.hpp>
#include <memory>
#include <mutex>

#include "capture/camera.h"
#include "capture/framegrabber_sdk.h"
#include "capture/win32_thread.h"
#include "detection/image_detection.h"
#include "foundation/bitmap.h"
#include "foundation/mutex.h"
#include "foundation/relaxed.h"
#include "ostrevanhvk3/callbacks.h"
#include "ostrevanhvk3/enumerations.h"
#include "ostrevanhvk3/image_resolution.h"

/// @file
/// One capture channel: the plug-in's main loop.

namespace Osv::lx {

class ClFramegrabber;

/// What a driver hangs on a channel.
class ClFrameGrabberChannelSDKData {
 public:
  ClFrameGrabberChannelSDKData() = default;
  ClFrameGrabberChannelSDKData(const ClFrameGrabberChannelSDKData&) = delete;
  ClFrameGrabberChannelSDKData& operator=(const ClFrameGrabberChannelSDKData&) = delete;
  virtual ~ClFrameGrabberChannelSDKData() = default;
};

/// One input of the scanner, with the worker thread that fetches its frames, hands them to the
/// client and turns every failure into a callback.
///
/// | state     | `m_bRunning` | worker              | left by |
/// |-----------|--------------|---------------------|---------|
/// | idle      | false        | none                | `StartCapture` |
/// | capturing | true         | in the loop         | `StopCapture`, a failure, or `m_bFreeze` |
/// | frozen    | true         | polls `m_bFreeze`   | `StopCapture`, or the flag |
/// | ended     | true         | has returned        | `StopCapture` alone |
///
/// The owner stops the channel before it destroys it, and copies it only while idle. Unless told
/// otherwise, operations are for the client's threads.
class ClFrameGrabberChannel : public CWin32Thread {
 public:
  /// The start and stop callbacks, which the client may exchange while capture runs.
  class CXCallbacks {
   public:
    void Set(ClStartCallback start, ClStopCallback stop);

    /// Calls back with the mutex held: a `Set` on another thread waits until the callback returns.
    void OnStart(int handle, unsigned int channel, void* user);
    void OnStop(int handle, unsigned int channel, void* user);

   protected:
    ClStartCallback m_pfnStart = nullptr;
    ClStopCallback m_pfnStop = nullptr;
    CXMutex m_Mutex;  ///< guards the pointers and the calls through them
  };

  ClFrameGrabberChannel() = default;
  ClFrameGrabberChannel(const ClFrameGrabberChannel& other);
  ClFrameGrabberChannel& operator=(const ClFrameGrabberChannel&) = delete;
  ~ClFrameGrabberChannel() override;

  /// The worker's whole life; see work_loop.cpp.
  /// @return 0
  int Work() override;

  /// Starts capture and returns at once. Each callback may be null.
  /// @return false when the thread could not be created: there is no worker then and no callback
  ///   comes, but the channel counts as started until `StopCapture`
  /// @throws ClLXException 77 unless the channel is idle, 51 for a mode without a strategy
  virtual bool StartCapture(int handle, eCaptureModeIDs mode, ClLiveImageCallback live_image,
                            ClDetectedFingerCallback finger, ClErrorCallback error,
                            ClWarningCallback warning, void* user);

  /// Ends capture and blocks until the worker has ended, after which no callback comes. Does
  /// nothing on an idle channel.
  /// @return true
  /// @throws ClLXException 65 on the worker's own thread, that is from inside a callback, unless
  ///   the client has stopped already
  virtual bool StopCapture();

  /// Tells the client of a failure as "<text> error: <number>"; null means a text of its own.
  virtual void SendError(const char* text, long number);

  /// Tells the client of a warning; the number is not passed on.
  virtual void SendWarning(const char* text, long number);

  /// Takes a new background: during capture from the next frame, otherwise with a picture taken
  /// through `grabber`.
  /// @throws ClLXException with number and text of `grabber` when there is no picture; the filter
  ///   then stays off
  virtual void RefreshBackGround(ClFramegrabber& grabber);

  /// For derived channels; nothing calls it.
  virtual void AddSpecificImageProcessing() {}

  /// True when frames are to be turned upright by the channel on their way to the client.
  virtual bool DoImageProcessing() const { return true; }

  /// @throws ClLXException 21 for a colour mode while a filter is set
  void SetCamera(eCameraIDs camera, eColorModeIDs mode);

  /// @throws ClLXException 21 for a filter together with a colour mode while capture runs
  void SetFilter(eFilterIDs filter);

  void SetResolution(const ClImageResolution& resolution);

  /// @throws ClLXException 14, always
  [[noreturn]] void SetAspectRatio(double x, double y);

  void SetCallbacks(ClStartCallback start, ClStopCallback stop) { m_Callbacks.Set(start, stop); }

  /// Replaces the strategy; not while the worker runs.
  /// @throws ClLXException 51 for a mode without a strategy, with the old strategy gone
  void SetDetection(eCaptureModeIDs mode);

  /// Asks the strategy, unless the scanner keeps frames from it. Worker thread.
  bool DoDetect(utilities::ClSimpleBitmap& in, utilities::ClSimpleBitmap& out);

  /// Brings a frame to the client's callbacks, without a copy. Worker thread.
  /// @param detect false for a frame that is finished as it is
  void SendBitmapToClient(utilities::ClSimpleBitmap& frame, bool detect);

  /// Brings a finished image to the client unless its middle row is blank. Worker thread.
  void CallbackDetectedFinger(utilities::ClSimpleBitmap& image);

  bool IsFreezed() const { return m_bFreeze; }

  /// The mode of the present strategy, which has to be there.
  eCaptureModeIDs GetCaptureMode() const { return m_pDetection->Type(); }

  bool CheckCameraSet() const;

  /// Changes `m_Camera` under its lock: `change` gets the `ClLXCamera&`. Any thread.
  template <typename Change>
  void ChangeCamera(const Change& change) {
    const std::lock_guard<std::mutex> lock(m_CameraMutex);
    change(m_Camera);
  }

  /// The frame that the worker fills and delivers; null before the first capture.
  utilities::ClSimpleBitmap* get_currrent_bitmap() const { return m_pCaptureBitmap.get(); }
  boost::shared_ptr<utilities::ClSimpleBitmap>& get_capture_bitmap() { return m_pCaptureBitmap; }

  /// Deletes the old data and takes ownership of `data`. Data still held when the channel goes is
  /// not deleted: the driver keeps track of it.
  void SetSDKData(ClFrameGrabberChannelSDKData* data) { m_pSDKData.reset(data); }

  /// Notes the calling thread as the worker.
  void SetCurrentThread() { m_nThreadId = pthread_self(); }

  /// True on the worker's thread.
  bool IsCurrentThread() const { return pthread_equal(pthread_self(), m_nThreadId) != 0; }

  /// True on the worker thread of any channel, that is inside every client callback.
  static bool IsWorkerThread();

  /// For derived channels.
  void Release() {}

  /// The scanner side of all channels. The driver sets it before a capture starts, and nothing
  /// clears it.
  static std::atomic<ClFramegrabberSDK*> m_pFramegrabberSDK;

  // Who may touch what: *start* is written while the channel is idle and constant during capture,
  // *worker* is the worker's during capture, *flag* is anybody's at any time.
  ClLXCamera m_Camera;                             ///< under `m_CameraMutex`; see `ChangeCamera`
  unsigned int m_nChannel = 1;                     ///< start; second argument of each callback
  std::unique_ptr<ClImageDetection> m_pDetection;  ///< start; outlives its capture
  TXRelaxed<bool> m_bDirty = true;                 ///< flag: the next frame is the background
  TXRelaxed<bool> m_bFreeze = false;               ///< flag: fetch no frames; outlives a capture
  utilities::ClSimpleBitmap m_Background;          ///< worker
  TXRelaxed<eColorModeIDs> m_eColorMode = eColorModeGray;  ///< flag
  TXRelaxed<eFilterIDs> m_eFilter = eFilterNone;           ///< flag
  TXRelaxed<bool> m_bRunning = false;                      ///< flag: cleared by `StopCapture` alone
  int m_nHandle = -1;                              ///< start; first argument of each callback
  ClLiveImageCallback m_pfnLiveImage = nullptr;    ///< start
  ClErrorCallback m_pfnError = nullptr;            ///< start
  ClDetectedFingerCallback m_pfnFinger = nullptr;  ///< start
  void* m_pUserData = nullptr;                     ///< start; last argument of each callback
  std::unique_ptr<ClFrameGrabberChannelSDKData> m_pSDKData;  ///< the driver's
  ClWarningCallback m_pfnWarning = nullptr;                  ///< start
  TXRelaxed<pthread_t> m_nThreadId = 0;                      ///< the worker, 0 when it has ended
  boost::shared_ptr<utilities::ClSimpleBitmap> m_pCaptureBitmap;  ///< worker; outlives its capture
  ClImageResolution m_Resolution;  ///< the client's wish; nothing reads it
  CXCallbacks m_Callbacks;
  CXMutex m_Mutex;                     ///< for derived channels; nothing here locks it
  TXRelaxed<bool> m_bTrigger = false;  ///< flag: a triggered image is due in preview

 protected:
  /// The scanner side; there from the first `StartCapture` on.
  static ClFramegrabberSDK& SDK() { return *m_pFramegrabberSDK.load(); }

  // The steps of `Work`; see work_loop.cpp.
  void CaptureUntilStopped(boost::shared_ptr<utilities::ClSimpleBitmap>& previous);
  void InitializeScanner();
  void RunLoop();
  void StayFrozen(bool& frozen);
  void RunPass();
  void PrepareIfDue(utilities::ClSimpleBitmap& bitmap);
  void AcquireAndDeliver(utilities::ClSimpleBitmap& bitmap);
  void DeliverTriggeredImage(utilities::ClSimpleBitmap& bitmap);
  void EndCapture();

  // The two roads of a frame; see frame_delivery.cpp.
  void SendUnchanged(utilities::ClSimpleBitmap& frame, bool detect);
  void SendProcessed(utilities::ClSimpleBitmap& frame, bool detect);
  void CallbackLiveImage(const utilities::ClSimpleBitmap& image);

 private:
  mutable std::mutex m_CameraMutex;  // leaf
  std::mutex m_LifecycleMutex;       // one start or stop at a time; never taken on the worker
};

}  // namespace Osv::lx
