#pragma once

#include <cstddef>
#include <string>

#include "ostrevanhvk3/image_block.h"

/// @file
/// An image drawn with characters.

namespace hvk3 {

/// How gray levels are shown.
enum class eShades {
  Auto,        ///< what the terminal can do, by `terminal_canvas`
  TrueColour,  ///< half-block characters in 24-bit colours
  Palette,     ///< half-block characters in the grays of the 256-colour palette
  Plain        ///< letters and signs, for everything else
};

/// What a terminal can do that shows the characters.
/// @param type of the terminal, as the environment variable TERM has it
/// @param colours as COLORTERM has it
eShades shades_for(const std::string& type, const std::string& colours);

/// What there is to draw on.
struct Canvas {
  std::size_t columns = 80;
  std::size_t rows = 50;
  eShades shades = eShades::Plain;
};

/// The canvas that standard output offers. `Auto` shows gray levels as the terminal can; what isn't
/// a terminal gets plain signs.
Canvas terminal_canvas(eShades shades);

/// The image as lines of text, as large as the canvas allows and never enlarged. A character shows
/// two pixels, one above the other, so that pixels are about square.
std::string draw(Osv::lx::ImageView image, const Canvas& canvas);

}  // namespace hvk3
