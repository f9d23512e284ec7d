#pragma once

#include <memory>
#include <string>

#include "support/process.h"
#include "viewer/picture.h"

/// @file
/// A display of a test's own, and a user in front of it.

namespace hvk3::test {

struct Place {
  int x = 0;
  int y = 0;
};

/// An X server without a screen to look at. Programs that are run while it lives show their windows
/// there, drawn by software.
class Display {
 public:
  /// @param screen its width, height and depth, as X has them
  explicit Display(const char* screen);
  ~Display();
  Display(const Display&) = delete;
  Display& operator=(const Display&) = delete;

  /// @name What a user does, with one window that is there
  /// @{
  /// @param name of the key, as X has it
  void press_key(const std::string& name);
  /// @param down it stays so
  void hold_key(const std::string& name, bool down);
  void point_at(const Place& in_window);
  /// Another window has come over this one, where the pointer is.
  void cover(const Place& in_window);
  void click(const Place& in_window);
  void close_window();
  void resize(int width, int height);
  /// @}

  /// What stands on the screen where the window is.
  Picture look() const;

  /// Nothing is drawn until it is let go on.
  void hang() const;
  void go_on() const;

  /// The server ends.
  void vanish();

 private:
  struct Connection;

  Process m_cServer;
  std::unique_ptr<Connection> m_pConnection;
};

}  // namespace hvk3::test
