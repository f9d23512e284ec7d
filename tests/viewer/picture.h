#pragma once

#include <SDL_rect.h>

#include <array>
#include <string>
#include <vector>

/// @file
/// What can be seen in a picture of the window.

namespace hvk3::test {

using Colour = std::array<unsigned char, 3>;

inline constexpr Colour kGreen = {72, 176, 112};
inline constexpr Colour kRed = {226, 92, 84};
inline constexpr Colour kAmber = {228, 168, 62};
inline constexpr Colour kBlue = {92, 156, 228};

class Picture {
 public:
  explicit Picture(const std::string& png_path);

  /// @param pixels rows from the top, 3 bytes a pixel: red, green, blue
  Picture(int width, int height, std::vector<unsigned char> pixels);

  int width() const { return m_nWidth; }
  int height() const { return m_nHeight; }

  Colour at(int x, int y) const;

  /// Row by row.
  std::vector<Colour> pixels(const SDL_Rect& area) const;

  /// How many pixels of the area have this colour.
  int count(const SDL_Rect& area, const Colour& colour) const;

  /// How many pixels of the area differ from its first one.
  int drawn(const SDL_Rect& area) const;

  /// How often dark and bright take turns in the area's middle row: at every ridge twice.
  int turns(const SDL_Rect& area) const;

 private:
  int m_nWidth = 0;
  int m_nHeight = 0;
  std::vector<unsigned char> m_vPixels;
};

}  // namespace hvk3::test
