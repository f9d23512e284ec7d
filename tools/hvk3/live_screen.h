#pragma once

#include <csignal>
#include <string>
#include <vector>

#include "hvk3/wakeup.h"

/// @file
/// A terminal taken over for pictures that follow one another.

namespace hvk3 {

/// As long as it lives, standard output shows a screen of its own, without a cursor; what stood
/// there comes back behind it, also when a signal ends or suspends the program. Nothing here waits
/// for the terminal longer than a moment. One object at a time.
class LiveScreen {
 public:
  /// @throws Failure `Usage` unless standard output is a terminal whose cursor can be moved
  static void require_terminal();

  /// @param wakeup is notified when the terminal changes its size, and to suspend; outlives this
  ///   object
  /// @throws Failure `OutputFailed`
  explicit LiveScreen(const Wakeup& wakeup);
  ~LiveScreen();
  LiveScreen(const LiveScreen&) = delete;
  LiveScreen& operator=(const LiveScreen&) = delete;

  /// Suspends the program if the user asked for it. @return whether the screen is to be drawn anew:
  ///   at first, with another size, after a suspension. What was not written yet is dropped then.
  [[nodiscard]] bool keep_up();

  /// Whether the terminal has taken everything.
  bool is_idle() const { return m_nWritten == m_sText.size(); }

  /// Writes a text as soon as the terminal takes it. Only while idle.
  void show(std::string text);

  /// Writes as much as the terminal takes now.
  void go_on();

  /// The file whose readiness to be written `go_on` waits for, -1 for none.
  int awaited_file() const { return is_idle() ? -1 : m_nFile; }

  /// Gives the terminal back at once, if it is taken. Safe in a signal handler that ends the
  /// program.
  static void give_back_now();

 private:
  void watch(int signal, void (*handler)(int), int flags);

  struct Watched {
    int signal;
    struct sigaction before;
  };

  int m_nFile;
  std::string m_sText;         // the last one shown
  std::size_t m_nWritten = 0;  // of it
  std::vector<Watched> m_vWatched;
};

}  // namespace hvk3
