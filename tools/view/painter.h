#pragma once

#include <optional>
#include <string>

#include "view/board.h"
#include "view/canvas.h"
#include "view/layout.h"

/// @file
/// The picture in the window.

namespace hvk3::view {

/// What is drawn, beside the images.
struct View {
  Status status;
  std::string kept_title;              ///< empty while nothing is kept
  bool kept_fake = false;              ///< and that is a fake finger
  std::optional<std::size_t> hovered;  ///< button under the pointer
  bool help = false;                   ///< the keys are shown
  bool ending = false;                 ///< the window goes as soon as the scanner is free
};

class Painter {
 public:
  explicit Painter(SDL_Window* window) : m_cCanvas(window) {}

  Canvas& canvas() { return m_cCanvas; }

  /// @name The images; null for none
  /// @{
  void set_live(const Image* image) { set(m_cLive, image); }
  void set_kept(const Image* image) { set(m_cKept, image); }
  /// @}

  /// Draws everything; `canvas().show()` brings it on the screen.
  void paint(const View& view, const Layout& layout);

 private:
  void set(GrayTexture& texture, const Image* image);
  void paint_header(const View& view, const SDL_Rect& area);
  void paint_live(const View& view, const Pane& pane);
  void paint_kept(const View& view, const Pane& pane);
  void paint_picture(const GrayTexture& texture, const SDL_Rect& area, bool dimmed,
                     const char* without);
  void paint_plot(const Status& status, const Pane& pane);
  void paint_scores(const Status& status, const SDL_Rect& area);
  void paint_buttons(const View& view, const Layout& layout);
  void paint_button(const SDL_Rect& area, std::size_t number, const View& view);
  void paint_notices(const Status& status, const SDL_Rect& area);
  void paint_notice(const Notice& notice, const SDL_Rect& area);
  void paint_notice_line(const Notice& notice, const SDL_Rect& line);
  void paint_help(const Layout& layout);

  Canvas m_cCanvas;
  GrayTexture m_cLive;
  GrayTexture m_cKept;
};

}  // namespace hvk3::view
