#pragma once

#include <string>

/// @file
/// Progress and errors, on standard error.

namespace hvk3 {

class Console {
 public:
  explicit Console(bool verbose);

  /// Removes the progress line.
  ~Console();
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  /// A line for the user who asked to be told.
  void detail(const std::string& text);

  /// Replaces the progress line; does nothing unless standard error is a terminal.
  void progress(const std::string& text);

  /// A line that everybody gets.
  void message(const std::string& text);

 private:
  void clear_progress();

  const bool m_bVerbose;
  const bool m_bTerminal;
  bool m_bProgress = false;  // a progress line stands
};

}  // namespace hvk3
