#pragma once

#include <SDL_rect.h>

#include <cstddef>
#include <optional>
#include <vector>

/// @file
/// Where things stand in the window.

namespace hvk3::view {

/// The size at which images stand one pixel on one, and the least that is legible.
inline constexpr int kUsualWidth = 1064;
inline constexpr int kUsualHeight = 786;
inline constexpr int kLeastWidth = 980;
inline constexpr int kLeastHeight = 600;

/// The size to open the window with, where the screen has so much room.
SDL_Point opening_size(const SDL_Rect& room);

/// A picture with its title above it.
struct Pane {
  SDL_Rect title;
  SDL_Rect picture;
};

struct Layout {
  SDL_Rect header;
  Pane live;
  Pane kept;
  Pane plot;
  std::vector<SDL_Rect> buttons;
  SDL_Rect notice;

  /// The number of the button at a place.
  std::optional<std::size_t> button_at(int x, int y) const;
};

Layout lay_out(int width, int height, std::size_t buttons);

/// The middle of `area`, as large as a picture fits there; a little room is no reason to scale it.
SDL_Rect fit(int width, int height, const SDL_Rect& area);

}  // namespace hvk3::view
