#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/process.h"
#include "support/temporary_folder.h"
#include "view/controls.h"
#include "view/layout.h"
#include "viewer/display.h"
#include "viewer/picture.h"

/// @file
/// The ground for tests that run the built viewer on a display of their own, with simulated
/// scanners. Lines of events are what they wait for.

namespace hvk3::test {

using Words = std::vector<std::string>;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using view::eAction;

class Viewer : public testing::Test {
 protected:
  explicit Viewer(const char* screen = "1280x900x24") : m_cDisplay(screen) {}

  /// Nobody lays a finger on the platen until it is said.
  void start(const Words& more = {}) {
    start_with({"--simulate", "--empty", "--pace", "60", "--script", "-"}, more);
  }

  void start_with(Words words, const Words& more) {
    ::setenv("LD_PRELOAD", HVK3_NO_CONFIGURATION_FILE, 1);
    words.insert(words.begin(), {HVK3_VIEW, "--events", "--window-picture", picture_path()});
    words.insert(words.end(), more.begin(), more.end());
    m_pViewer = std::make_unique<Process>(words, Terminals(), eInput::Written);
    ::unsetenv("LD_PRELOAD");
  }

  /// Starts it and waits for the first image.
  void start_capturing(const Words& more = {}) {
    start(more);
    wait_for("live");
  }

  void wait_for(const std::string& event) {
    if (!m_pViewer->wait_for_output_text(event + '\n')) {
      throw std::runtime_error("no " + event + " came: " + m_pViewer->wait().error);
    }
  }

  /// Lines for the simulator. They are carried out when this returns: behind them stands a word
  /// that is not understood, and that is told.
  void say(const std::string& lines) {
    const std::string end = "said-" + std::to_string(++m_nSaid);
    m_pViewer->write(lines + '\n' + end + '\n');
    if (!m_pViewer->wait_for_error_text('\'' + end + '\'')) {
      throw std::runtime_error("nobody reads " + lines);
    }
  }

  void press(const std::string& key) { m_cDisplay.press_key(key); }

  void press(const std::string& key, const std::string& event) {
    press(key);
    wait_for(event);
  }

  void click(eAction action) {
    const SDL_Rect place = button(action);
    m_cDisplay.click({place.x + place.w / 2, place.y + place.h / 2});
  }

  static SDL_Rect button(eAction action) {
    std::size_t number = 0;
    while (view::controls()[number].action != action) {
      ++number;
    }
    return layout().buttons.at(number);
  }

  static view::Layout layout() {
    return view::lay_out(view::kUsualWidth, view::kUsualHeight, view::button_count());
  }

  std::string picture_path() const { return m_cFolder.file("window.png"); }

  /// The window as it is behind all events that were waited for.
  Picture picture() {
    press("F12", "window picture " + picture_path());
    return Picture(picture_path());
  }

  /// Looks at the screen until it shows this: what is drawn comes there some time later.
  template <class Predicate>
  bool screen_comes_to_show(Predicate predicate) const {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (std::chrono::steady_clock::now() < end) {
      if (predicate(m_cDisplay.look())) {
        return true;
      }
    }
    return false;
  }

  /// The bar beside the state.
  static Colour state_of(const Picture& picture) {
    const SDL_Rect header = layout().header;
    return picture.at(header.x + 2, header.y + header.h / 2);
  }

  /// A print in the middle of the picture, and no blank.
  static bool shows_print(const Picture& picture, const view::Pane& pane) {
    constexpr int kTurnsOfAPrint = 24;
    return picture.turns(pane.picture) > kTurnsOfAPrint;
  }

  Outcome quit() {
    press("q");
    return m_pViewer->wait();
  }

  TemporaryFolder m_cFolder;
  Display m_cDisplay;
  std::unique_ptr<Process> m_pViewer;
  int m_nSaid = 0;
};

}  // namespace hvk3::test
