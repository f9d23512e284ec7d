#pragma once

#include <chrono>
#include <mutex>
#include <optional>
#include <string>

#include "hvk3/image.h"
#include "hvk3/live_screen.h"
#include "hvk3/terminal_picture.h"

/// @file
/// The live image on a terminal.

namespace hvk3 {

/// Draws the newest image whenever the terminal has taken the one before, and leaves out those
/// between.
class Preview {
 public:
  explicit Preview(eShades shades) : m_eShades(shades) {}
  Preview(const Preview&) = delete;
  Preview& operator=(const Preview&) = delete;

  /// Copies the image; from any thread.
  void offer(const unsigned char* image);

  /// The line below the picture.
  void set_status(const std::string& line);

  /// Draws what is new, if the terminal takes it now.
  void draw_on(LiveScreen& screen);

  /// When to draw again though nothing happens; none when all that is new is drawn, or its turn
  /// comes as the terminal takes more.
  Wakeup::Deadline next(const LiveScreen& screen) const;

 private:
  using Clock = std::chrono::steady_clock;

  void take_newest();
  std::string picture() const;

  const eShades m_eShades;
  std::string m_sStatus;
  std::optional<Image> m_cShown;
  bool m_bStale = false;  // the screen shows something older
  Clock::time_point m_cNext = Clock::time_point::min();

  mutable std::mutex m_cLock;  // guards everything below
  std::optional<Image> m_cNewest;
};

}  // namespace hvk3
