#pragma once

#include <chrono>
#include <optional>

/// @file
/// What the main thread waits on while capture runs.

namespace hvk3 {

/// Any thread and any signal handler may wake the one thread that waits.
class Wakeup {
 public:
  using Deadline = std::optional<std::chrono::steady_clock::time_point>;

  /// @throws std::system_error
  Wakeup();
  ~Wakeup();
  Wakeup(const Wakeup&) = delete;
  Wakeup& operator=(const Wakeup&) = delete;

  /// Ends the present or the next wait. Safe in a signal handler.
  void notify() const;

  /// Waits for a `notify` since the last wait, or until a file can be written; -1 for none.
  /// @return false when the deadline has passed
  [[nodiscard]] bool wait(const Deadline& deadline, int written_file = -1) const;

  /// Waits until a file can be read, or has ended. @return false after a `notify`, which stays for
  ///   the next wait
  [[nodiscard]] bool wait_for_input(int file) const;

 private:
  int m_nFile;
};

/// The moment so many seconds from now; none for 0.
Wakeup::Deadline deadline_after(double seconds);

}  // namespace hvk3
