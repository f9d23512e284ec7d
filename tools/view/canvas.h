#pragma once

#include <SDL.h>
#include <SDL_ttf.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "hvk3/image.h"

/// @file
/// Drawing.

namespace hvk3::view {

/// Gives what SDL made back to it.
struct SdlDeleter {
  void operator()(SDL_Window* window) const { SDL_DestroyWindow(window); }
  void operator()(SDL_Renderer* renderer) const { SDL_DestroyRenderer(renderer); }
  void operator()(SDL_Texture* texture) const { SDL_DestroyTexture(texture); }
  void operator()(SDL_Surface* surface) const { SDL_FreeSurface(surface); }
  void operator()(TTF_Font* font) const { TTF_CloseFont(font); }
};
template <class Type>
using SdlPointer = std::unique_ptr<Type, SdlDeleter>;

/// @throws Failure `OutputFailed` with SDL's reason
[[noreturn]] void fail_with_sdl(const std::string& what);

enum class eFont { Small, Normal, Large };
enum class eAlign { Left, Middle, Right };

/// Draws on a window, with text of the system's font.
class Canvas {
 public:
  /// @throws Failure `OutputFailed`
  explicit Canvas(SDL_Window* window);

  SDL_Renderer* renderer() { return m_pRenderer.get(); }

  void clear(SDL_Color colour);
  void fill(const SDL_Rect& area, SDL_Color colour);
  void frame(const SDL_Rect& area, SDL_Color colour);
  void line(SDL_Point from, SDL_Point to, SDL_Color colour);

  /// A line of text in the middle of the area's height; what is too long has dots in it.
  /// @return its width
  int text(const SDL_Rect& area, const std::string& text, eFont font, SDL_Color colour,
           eAlign align = eAlign::Left);

  /// What has been drawn, rows from the top, 3 bytes a pixel: red, green, blue.
  struct Pixels {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> bytes;
  };
  Pixels read();

  void show() { SDL_RenderPresent(m_pRenderer.get()); }

 private:
  SdlPointer<SDL_Renderer> m_pRenderer;
  std::array<SdlPointer<TTF_Font>, 3> m_aFonts;
};

/// A picture that is replaced again and again.
class GrayTexture {
 public:
  /// @throws Failure `OutputFailed`
  void update(Canvas& canvas, const Image& image);

  void clear() { m_pTexture.reset(); }

  bool is_empty() const { return m_pTexture == nullptr; }

  /// As large as it fits.
  void draw(Canvas& canvas, const SDL_Rect& area, bool dimmed) const;

 private:
  SdlPointer<SDL_Texture> m_pTexture;
  int m_nWidth = 0;
  int m_nHeight = 0;
};

}  // namespace hvk3::view
