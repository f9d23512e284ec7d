#pragma once

#include <SDL.h>

#include <optional>

#include "view/canvas.h"
#include "view/controls.h"

/// @file
/// The window and what the user does in it.

namespace hvk3::view {

/// SDL with what it needs, as long as it lives. One at a time.
class Screen {
 public:
  /// @throws Failure `OutputFailed` without a display
  Screen();
  ~Screen();
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;
};

/// Something that the user did.
struct Input {
  std::optional<eAction> action;     ///< by a key or a button
  std::optional<SDL_Point> pressed;  ///< the place where a mouse button went down
  std::optional<SDL_Point> pointed;  ///< the place where the pointer is
  bool escape = false;
  bool close = false;  ///< by the window's frame
  bool exposed = false;
};

class Window {
 public:
  /// @throws Failure `OutputFailed`
  explicit Window(const char* title);

  SDL_Window* get() { return m_pWindow.get(); }
  SDL_Point size() const;

  /// The next thing that the user does; none within the time.
  static std::optional<Input> wait(int milliseconds);

 private:
  SdlPointer<SDL_Window> m_pWindow;
};

}  // namespace hvk3::view
