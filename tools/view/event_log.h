#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
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
  /// So many lines are kept for a slow reader. In the place of those beyond stands how many they
  /// are.
  static constexpr std::size_t kMost = 10'000;

  /// @param patience how long the end waits for a reader that takes nothing
  explicit EventLog(bool wanted, std::chrono::milliseconds patience = std::chrono::seconds(2));
  ~EventLog();
  EventLog(const EventLog&) = delete;
  EventLog& operator=(const EventLog&) = delete;

  /// From any thread.
  void tell(const std::string& line);

  /// Waits until everything is written, or nobody reads it. Nothing is told afterwards.
  void close();

  /// @throws Failure `OutputFailed` when a line could not be written
  void check() const;

 private:
  void keep(const std::string& line);
  void work();
  void write(const std::string& line);
  bool has_room() const;

  const bool m_bWanted;
  const std::chrono::milliseconds m_cPatience;
  std::atomic<bool> m_bBroken = false;
  std::atomic<bool> m_bClosed = false;  // changed with the lock

  std::mutex m_cLock;  // guards the next two
  std::deque<std::string> m_cLines;
  std::size_t m_nLost = 0;  // told by the last of the lines
  std::condition_variable m_cChanged;

  std::thread m_cThread;  // last: it uses everything above
};

}  // namespace hvk3::view
