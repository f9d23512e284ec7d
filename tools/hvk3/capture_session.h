#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "hvk3/image.h"
#include "hvk3/wakeup.h"
#include "ostrevanhvk3/framegrabber.h"

/// @file
/// One capture, from its start to its stop.

namespace hvk3 {

/// What has come in since the start.
struct Progress {
  unsigned long frames = 0;          ///< live images
  unsigned long fingers = 0;         ///< finished finger images
  bool running = false;              ///< between the start and the stop callback
  std::optional<std::string> error;  ///< the text of the error callback
  std::vector<std::string> warnings;
};

/// Turns the plug-in's callbacks into images that the main thread takes. The callbacks copy what
/// they get and wake the main thread; with some images waiting they let capture wait for it.
class CaptureSession {
 public:
  /// @param mode live: every frame is an image to take; plain: every finished finger image is
  /// @param observe runs for each live image inside its callback, before it is an image to take;
  ///   may be empty
  /// @param grabber, wakeup outlive the session
  CaptureSession(Osv::lx::ClFramegrabber& grabber, eCaptureModeIDs mode, const Wakeup& wakeup,
                 std::function<void(const unsigned char*)> observe);

  /// Stops capture if it still runs.
  ~CaptureSession();
  CaptureSession(const CaptureSession&) = delete;
  CaptureSession& operator=(const CaptureSession&) = delete;

  /// @throws Failure
  void start();

  /// Returns when no callback can come any more.
  /// @throws Failure
  void stop();

  /// The next image, if one waits.
  std::optional<Image> take();

  Progress progress() const;

 private:
  static void on_start(int handle, unsigned int channel, void* user);
  static void on_stop(int handle, unsigned int channel, void* user);
  static void on_frame(int handle, unsigned int channel, unsigned char* image, void* user);
  static void on_finger(int handle, unsigned int channel, int type, unsigned char* image,
                        void* user);
  static void on_error(int handle, unsigned int channel, const char* text, void* user);
  static void on_warning(int handle, unsigned int channel, const char* text, void* user);

  /// Changes the state under the lock and wakes the main thread.
  template <class Change>
  void update(Change change);
  void keep(const unsigned char* image);
  unsigned long end_capture();

  Osv::lx::ClFramegrabber& m_cGrabber;
  const eCaptureModeIDs m_eMode;
  const Wakeup& m_cWakeup;
  const std::function<void(const unsigned char*)> m_cObserve;  // worker thread
  bool m_bStarted = false;                                     // main thread only

  mutable std::mutex m_cLock;  // guards everything below
  std::condition_variable m_cRoom;
  Progress m_cProgress;
  std::deque<Image> m_cImages;
  bool m_bStopping = false;
};

}  // namespace hvk3
