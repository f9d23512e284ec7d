#pragma once

#include <atomic>
#include <mutex>
#include <string>

/// @file
/// What happens, for programs that watch the viewer.

namespace hvk3::view {

/// Writes a line for each event on standard output, if that is wanted. From any thread.
class EventLog {
 public:
  explicit EventLog(bool wanted) : m_bWanted(wanted) {}

  void tell(const std::string& line);

  /// Whether a line could not be written.
  bool is_broken() const { return m_bBroken; }

 private:
  const bool m_bWanted;
  std::atomic<bool> m_bBroken = false;
  std::mutex m_cLock;  // guards standard output
};

}  // namespace hvk3::view
