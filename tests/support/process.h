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

/// Which of a program's streams are a terminal. The others are pipes.
struct Terminals {
  bool out = false;
  bool error = false;
  unsigned short columns = 80;
  unsigned short rows = 25;
};

/// What a program reads from its standard input.
enum class eInput { Empty, Written };

/// A running program.
class Process {
 public:
  /// @param command path of the program and its arguments
  /// @param input written: what `write` is given, without an end
  explicit Process(const std::vector<std::string>& command, Terminals terminals = {},
                   eInput input = eInput::Empty);

  /// Ends the program if nobody waited for it.
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  /// Reads standard error until this text stands in it. @return false when the program ended before
  [[nodiscard]] bool wait_for_error_text(const std::string& text);

  /// Reads standard output until this text stands behind what the last such wait has found.
  /// @return false when the program ended before
  [[nodiscard]] bool wait_for_output_text(const std::string& text);

  /// What standard output has had so far, as far as it was read.
  const std::string& output() const { return m_cOutcome.out; }

  void write(const std::string& text) const;

  /// Reads no more from standard output, until `wait`.
  void leave_output() { m_bReadsOutput = false; }

  /// Gives the terminal of standard output another size, and tells the program.
  void resize(unsigned short columns, unsigned short rows) const;

  /// Waits until the program is suspended. @return false when it ended
  [[nodiscard]] bool wait_for_suspension() const;

  void send(int signal) const;

  /// Waits for the end.
  Outcome wait();

 private:
  bool read_some();

  pid_t m_nProcess = -1;
  int m_nIn = -1;
  int m_nOut = -1;
  int m_nError = -1;
  bool m_bReadsOutput = true;
  Outcome m_cOutcome;
  std::size_t m_nSeen = 0;  // of standard output
};

/// Runs a program to its end.
Outcome run(const std::vector<std::string>& command, Terminals terminals = {});

}  // namespace hvk3::test
