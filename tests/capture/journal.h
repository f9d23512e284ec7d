#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

/// @file
/// What happened in a test, in order, in words.

namespace Osv::test {

/// A list of entries that any thread adds to and a test waits on.
class Journal {
 public:
  void add(const std::string& entry) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_entries.push_back(entry);
    m_added.notify_all();
  }

  std::vector<std::string> entries() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_entries;
  }

  long count(const std::string& entry) const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return count_locked(entry);
  }

  /// Blocks until `entry` is there `times` times; false when it does not come at all.
  [[nodiscard]] bool await(const std::string& entry, long times = 1) {
    std::unique_lock<std::mutex> lock(m_mutex);
    return m_added.wait_for(lock, std::chrono::minutes(1),
                            [&] { return count_locked(entry) >= times; });
  }

 private:
  long count_locked(const std::string& entry) const {
    return std::count(m_entries.begin(), m_entries.end(), entry);
  }

  mutable std::mutex m_mutex;
  std::condition_variable m_added;
  std::vector<std::string> m_entries;
};

}  // namespace Osv::test
