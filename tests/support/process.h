#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

/// @file
/// Another program, run by a test.

namespace hvk3::test {

/// How a program ended and what it wrote.
struct Outcome {
  int status = -1;  ///< exit status; 128 + n after signal n, as a shell has it
  std::string out;
  std::string error;
};

/// Which of a program's streams are a terminal, of 80 columns and 25 rows. The others are pipes.
struct Terminals {
  bool out = false;
  bool error = false;
};

/// A running program. Its standard input is empty.
class Process {
 public:
  /// @param command path of the program and its arguments
  explicit Process(const std::vector<std::string>& command, Terminals terminals = {});

  /// Ends the program if nobody waited for it.
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  /// Reads standard error until this text stands in it. @return false when the program ended before
  [[nodiscard]] bool wait_for_error_text(const std::string& text);

  void send(int signal) const;

  /// Waits for the end.
  Outcome wait();

 private:
  bool read_some();

  pid_t m_nProcess = -1;
  int m_nOut = -1;
  int m_nError = -1;
  Outcome m_cOutcome;
};

/// Runs a program to its end.
Outcome run(const std::vector<std::string>& command, Terminals terminals = {});

}  // namespace hvk3::test
