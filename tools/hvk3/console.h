#pragma once

#include <mutex>
#include <string>

/// @file
/// Progress and errors, on standard error.

namespace hvk3 {

/// From any thread.
class Console {
 public:
  /// As long as it lives a picture stands on the terminal: what would be written into it is kept
  /// back. One object at a time.
  class Pause {
   public:
    explicit Pause(Console& console);
    ~Pause();
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;

   private:
    Console& m_cConsole;
  };

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

  std::mutex m_cLock;        // guards everything below, and standard error
  bool m_bProgress = false;  // a progress line stands
  bool m_bPaused = false;
  std::string m_sKept;  // the lines of a pause
};

}  // namespace hvk3
