#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "ostrevanhvk3/callbacks.h"

/// @file
/// The client's callbacks, written down.

namespace Osv::client {

enum class eEvent { Start, Stop, Live, Finger, Error, Warning };

/// One callback.
struct Event {
  eEvent kind = eEvent::Start;
  int handle = 0;
  unsigned int channel = 0;
  int type = 0;                          ///< of a finger image
  std::string text;                      ///< of an error or a warning
  const unsigned char* block = nullptr;  ///< of an image, lent
  std::vector<unsigned char> image;      ///< a copy of the block, if images are kept
  std::thread::id thread;
};

using Events = std::vector<Event>;

/// Collects callbacks in their order. It is the user pointer of the callbacks.
class Recorder {
 public:
  static void on_start(int handle, unsigned int channel, void* user);
  static void on_stop(int handle, unsigned int channel, void* user);
  static void on_live(int handle, unsigned int channel, unsigned char* image, void* user);
  static void on_finger(int handle, unsigned int channel, int type, unsigned char* image,
                        void* user);
  static void on_error(int handle, unsigned int channel, const char* text, void* user);
  static void on_warning(int handle, unsigned int channel, const char* text, void* user);

  /// Copies images from now on.
  void keep_images() { m_bKeepImages = true; }

  /// Runs inside each callback, before it is written down. Set it while nothing captures.
  std::function<void(const Event&)> inside;

  /// Waits until so many callbacks of a kind have come. @return false when they don't come
  [[nodiscard]] bool wait_for(eEvent kind, std::size_t count = 1);

  /// As `wait_for`, for so many more than have come by now.
  [[nodiscard]] bool wait_for_more(eEvent kind, std::size_t count = 1);

  Events all() const;
  Events of(eEvent kind) const;
  std::vector<eEvent> kinds() const;
  std::size_t count(eEvent kind) const { return of(kind).size(); }

  /// Forgets what was written down.
  void clear();

 private:
  static Recorder& self(void* user) { return *static_cast<Recorder*>(user); }

  void note(Event event);
  std::size_t count_locked(eEvent kind) const;

  mutable std::mutex m_cLock;
  std::condition_variable m_cChanged;
  Events m_vEvents;  // guarded by m_cLock
  std::atomic<bool> m_bKeepImages = false;
};

}  // namespace Osv::client
