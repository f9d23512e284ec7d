#pragma once

#include <array>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>

#include "client/recorder.h"

/// @file
/// What one capture brings to its client.

namespace Osv::threads {

using client::eEvent;

/// Counts the callbacks of one capture, and those that come where none may. It is the user pointer
/// of that capture, and outlives the frame grabber: one that comes late finds it.
class CaptureRecord {
 public:
  static void on_start(int handle, unsigned int channel, void* user);
  static void on_stop(int handle, unsigned int channel, void* user);
  static void on_live(int handle, unsigned int channel, unsigned char* image, void* user);
  static void on_finger(int handle, unsigned int channel, int type, unsigned char* image,
                        void* user);
  static void on_error(int handle, unsigned int channel, const char* text, void* user);

  /// Runs inside each callback, after it was counted, with the number of its kind. Set it before
  /// the capture starts.
  std::function<void(eEvent kind, int number)> inside;

  /// Waits for so many callbacks of a kind. @return false when they don't come
  [[nodiscard]] bool wait_for(eEvent kind, int count);

  /// The client's stop has returned: nothing may come any more.
  void close();

  int count(eEvent kind) const;

  /// What is wrong with the callbacks so far, empty for nothing: start without stop or the other
  /// way round, a callback in front of the start or behind the stop, one behind the client's stop.
  std::string complaint() const;

 private:
  static CaptureRecord& self(void* user) { return *static_cast<CaptureRecord*>(user); }

  void note(eEvent kind);

  mutable std::mutex m_cLock;  // guards the rest
  std::condition_variable m_cChanged;
  std::array<int, 6> m_nCounts = {};  // by kind
  int m_nUnframed = 0;                // not between start and stop
  int m_nLate = 0;
  bool m_bClosed = false;
};

}  // namespace Osv::threads
