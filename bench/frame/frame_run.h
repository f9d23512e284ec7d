#pragma once

#include <condition_variable>
#include <mutex>

#include "ostrevanhvk3/framegrabber.h"

/// @file
/// Capturing an exact number of frames through the plug-in.

namespace Osv::bench {

constexpr unsigned int kChannel = 1;

/// One capture at a time, of as many frames as are asked for: behind the last one the channel is
/// frozen, from inside its callback, so that none follows it.
class FrameRun {
 public:
  explicit FrameRun(lx::ClFramegrabber& grabber) : m_grabber(grabber) {}
  virtual ~FrameRun() = default;
  FrameRun(const FrameRun&) = delete;
  FrameRun& operator=(const FrameRun&) = delete;

  /// Captures `frames` frames and returns when capture has stopped.
  /// @throws std::runtime_error with the plug-in's text when capture fails
  void run(eCaptureModeIDs mode, unsigned long frames);

 protected:
  /// Each frame, on the worker thread. @param frame counts from 0
  virtual void on_frame(unsigned long /*frame*/, const unsigned char* /*image*/) {}

  /// Each image with a finger, on the worker thread.
  virtual void on_finger(const unsigned char* /*image*/) {}

 private:
  static void live_image(int, unsigned int, unsigned char* image, void* user);
  static void error(int, unsigned int, const char* text, void* user);
  static void finger(int, unsigned int, int, unsigned char* image, void* user);
  void end(const char* failure);
  void await_end();

  lx::ClFramegrabber& m_grabber;
  unsigned long m_frames = 0;  // worker, while capture runs
  unsigned long m_wanted = 0;

  std::mutex m_lock;  // guards the rest
  std::condition_variable m_changed;
  bool m_ended = false;
  const char* m_failure = nullptr;
};

}  // namespace Osv::bench
