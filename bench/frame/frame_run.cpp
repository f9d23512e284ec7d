#include "frame_run.h"

#include <cstdio>
#include <stdexcept>

#include "client/plugin.h"

namespace Osv::bench {

void FrameRun::run(eCaptureModeIDs mode, unsigned long frames) {
  m_frames = 0;
  m_wanted = frames;
  m_ended = false;
  m_failure = nullptr;
  m_grabber.Freeze(kChannel, false);
  if (m_grabber.StartCapture(0, kChannel, mode, &live_image, &finger, &error, nullptr, this) != 0) {
    throw std::runtime_error(client::last_error(m_grabber));
  }
  await_end();
  m_grabber.StopCapture(kChannel);
  if (m_failure != nullptr) {
    throw std::runtime_error(m_failure);
  }
}

void FrameRun::await_end() {
  std::unique_lock<std::mutex> lock(m_lock);
  m_changed.wait(lock, [this] { return m_ended; });
}

void FrameRun::live_image(int, unsigned int, unsigned char* image, void* user) {
  FrameRun& run = *static_cast<FrameRun*>(user);
  run.on_frame(run.m_frames, image);
  if (++run.m_frames == run.m_wanted) {
    run.m_grabber.Freeze(kChannel, true);
    run.end(nullptr);
  }
}

void FrameRun::finger(int, unsigned int, int, unsigned char* image, void* user) {
  static_cast<FrameRun*>(user)->on_finger(image);
}

void FrameRun::error(int, unsigned int, const char* text, void* user) {
  std::fprintf(stderr, "%s\n", text);
  static_cast<FrameRun*>(user)->end("capture failed");
}

void FrameRun::end(const char* failure) {
  const std::lock_guard<std::mutex> lock(m_lock);
  m_ended = true;
  m_failure = failure;
  m_changed.notify_one();
}

}  // namespace Osv::bench
