#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <thread>

/// @file
/// What happens, for programs that watch the viewer.

namespace hvk3::view {

/// Writes a line for each event on standard output, if that is wanted. A thread of its own writes
/// them in order, so that nobody who tells waits for a slow reader.
class EventLog {
 public:
  explicit EventLog(bool wanted);
  ~EventLog();
  EventLog(const EventLog&) = delete;
  EventLog& operator=(const EventLog&) = delete;

  /// From any thread.
  void tell(const std::string& line);

  /// Waits until everything is written. Nothing is told afterwards.
  void close();

  /// Whether a line could not be written.
  bool is_broken() const { return m_bBroken; }

 private:
  void work();
  void write(const std::string& line);

  const bool m_bWanted;
  std::atomic<bool> m_bBroken = false;

  std::mutex m_cLock;  // guards the next two
  std::deque<std::string> m_cLines;
  bool m_bClosed = false;
  std::condition_variable m_cChanged;

  std::thread m_cThread;  // last: it uses everything above
};

}  // namespace hvk3::view
