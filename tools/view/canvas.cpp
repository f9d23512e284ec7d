#include "view/canvas.h"

#include <algorithm>
#include <cstdint>

#include "hvk3/failure.h"
#include "view/font_file.h"
#include "view/layout.h"
#include "view/shortening.h"

namespace hvk3::view {
namespace {

constexpr std::array kFontSizes = {13, 15, 22};

void open_fonts(std::array<SdlPointer<TTF_Font>, 3>& fonts) {
  const std::string file = find_font_file();
  for (std::size_t i = 0; i < fonts.size(); ++i) {
    fonts.at(i).reset(TTF_OpenFont(file.c_str(), kFontSizes.at(i)));
    if (!fonts.at(i)) {
      fail_with_sdl(file);
    }
  }
}

}  // namespace

void fail_with_sdl(const std::string& what) {
  throw Failure(ExitStatus::OutputFailed, what + ": " + SDL_GetError());
}

Canvas::Canvas(SDL_Window* window) : m_pRenderer(SDL_CreateRenderer(window, -1, 0)) {
  if (!m_pRenderer) {
    fail_with_sdl("nothing can be drawn");
  }
  open_fonts(m_aFonts);
}

void Canvas::clear(SDL_Color colour) {
  SDL_SetRenderDrawColor(renderer(), colour.r, colour.g, colour.b, colour.a);
  SDL_RenderClear(renderer());
}

void Canvas::fill(const SDL_Rect& area, SDL_Color colour) {
  SDL_SetRenderDrawColor(renderer(), colour.r, colour.g, colour.b, colour.a);
  SDL_RenderFillRect(renderer(), &area);
}

void Canvas::frame(const SDL_Rect& area, SDL_Color colour) {
  SDL_SetRenderDrawColor(renderer(), colour.r, colour.g, colour.b, colour.a);
  SDL_RenderDrawRect(renderer(), &area);
}

void Canvas::line(SDL_Point from, SDL_Point to, SDL_Color colour) {
  SDL_SetRenderDrawColor(renderer(), colour.r, colour.g, colour.b, colour.a);
  SDL_RenderDrawLine(renderer(), from.x, from.y, to.x, to.y);
}

int Canvas::text(const SDL_Rect& area, const std::string& text, eFont font, SDL_Color colour,
                 eAlign align) {
  TTF_Font* const face = m_aFonts.at(static_cast<std::size_t>(font)).get();
  const std::string line = shorten(text, [&](const std::string& each) {
    int width = 0;
    return TTF_SizeUTF8(face, each.c_str(), &width, nullptr) == 0 && width <= area.w;
  });
  const SdlPointer<SDL_Surface> surface(TTF_RenderUTF8_Blended(face, line.c_str(), colour));
  if (!surface) {  // no text has no surface
    return 0;
  }
  const SdlPointer<SDL_Texture> texture(SDL_CreateTextureFromSurface(renderer(), surface.get()));
  const int room = area.w - surface->w;
  const int left = align == eAlign::Left ? 0 : align == eAlign::Right ? room : room / 2;
  const SDL_Rect place = {area.x + left, area.y + (area.h - surface->h) / 2, surface->w,
                          surface->h};
  SDL_RenderCopy(renderer(), texture.get(), nullptr, &place);
  return surface->w;
}

Canvas::Pixels Canvas::read() {
  Pixels pixels;
  SDL_GetRendererOutputSize(renderer(), &pixels.width, &pixels.height);
  const int pitch = 3 * pixels.width;
  pixels.bytes.resize(static_cast<std::size_t>(pitch) * static_cast<std::size_t>(pixels.height));
  if (SDL_RenderReadPixels(renderer(), nullptr, SDL_PIXELFORMAT_RGB24, pixels.bytes.data(),
                           pitch) != 0) {
    fail_with_sdl("the window can't be read");
  }
  return pixels;
}

void GrayTexture::update(Canvas& canvas, const Image& image) {
  const Osv::lx::ImageView view = image.view();
  const int width = static_cast<int>(view.width());
  const int height = static_cast<int>(view.height());
  if (is_empty() || width != m_nWidth || height != m_nHeight) {
    m_pTexture.reset(SDL_CreateTexture(canvas.renderer(), SDL_PIXELFORMAT_ARGB8888,
                                       SDL_TEXTUREACCESS_STREAMING, width, height));
    m_nWidth = width;
    m_nHeight = height;
  }
  void* pixels = nullptr;
  int pitch = 0;
  if (!m_pTexture || SDL_LockTexture(m_pTexture.get(), nullptr, &pixels, &pitch) != 0) {
    fail_with_sdl("no picture can be drawn");
  }
  for (int y = 0; y < height; ++y) {
    const unsigned char* const row = view.row_from_top(static_cast<std::size_t>(y));
    auto* const target = reinterpret_cast<std::uint32_t*>(static_cast<unsigned char*>(pixels) +
                                                          std::ptrdiff_t{y} * pitch);
    std::transform(row, row + width, target,
                   [](std::uint32_t level) { return 0xFF000000U | level * 0x010101U; });
  }
  SDL_UnlockTexture(m_pTexture.get());
}

void GrayTexture::draw(Canvas& canvas, const SDL_Rect& area, bool dimmed) const {
  constexpr Uint8 kDim = 110;
  const Uint8 level = dimmed ? kDim : SDL_ALPHA_OPAQUE;
  SDL_SetTextureColorMod(m_pTexture.get(), level, level, level);
  const SDL_Rect place = fit(m_nWidth, m_nHeight, area);
  SDL_RenderCopy(canvas.renderer(), m_pTexture.get(), nullptr, &place);
}

}  // namespace hvk3::view
