#include "viewer/picture.h"

#include <png.h>

#include <stdexcept>
#include <utility>

namespace hvk3::test {
namespace {

template <class Predicate>
int count_pixels(const SDL_Rect& area, Predicate predicate) {
  int count = 0;
  for (int y = area.y; y < area.y + area.h; ++y) {
    for (int x = area.x; x < area.x + area.w; ++x) {
      count += predicate(x, y) ? 1 : 0;
    }
  }
  return count;
}

}  // namespace

Picture::Picture(const std::string& png_path) {
  png_image image = {};
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_file(&image, png_path.c_str()) == 0) {
    throw std::runtime_error(png_path + ": " + image.message);
  }
  image.format = PNG_FORMAT_RGB;
  m_nWidth = static_cast<int>(image.width);
  m_nHeight = static_cast<int>(image.height);
  m_vPixels.resize(PNG_IMAGE_SIZE(image));
  if (png_image_finish_read(&image, nullptr, m_vPixels.data(), 0, nullptr) == 0) {
    throw std::runtime_error(png_path + ": " + image.message);
  }
}

Picture::Picture(int width, int height, std::vector<unsigned char> pixels)
    : m_nWidth(width), m_nHeight(height), m_vPixels(std::move(pixels)) {}

Colour Picture::at(int x, int y) const {
  const auto place = static_cast<std::size_t>(y * m_nWidth + x) * 3;
  return {m_vPixels.at(place), m_vPixels.at(place + 1), m_vPixels.at(place + 2)};
}

std::vector<Colour> Picture::pixels(const SDL_Rect& area) const {
  std::vector<Colour> pixels;
  for (int y = area.y; y < area.y + area.h; ++y) {
    for (int x = area.x; x < area.x + area.w; ++x) {
      pixels.push_back(at(x, y));
    }
  }
  return pixels;
}

int Picture::count(const SDL_Rect& area, const Colour& colour) const {
  return count_pixels(area, [&](int x, int y) { return at(x, y) == colour; });
}

int Picture::drawn(const SDL_Rect& area) const {
  const Colour first = at(area.x, area.y);
  return count_pixels(area, [&](int x, int y) { return at(x, y) != first; });
}

int Picture::turns(const SDL_Rect& area) const {
  constexpr int kDark = 100;
  constexpr int kBright = 180;
  bool dark = false;
  int turns = 0;
  for (int x = area.x; x < area.x + area.w; ++x) {
    const int level = at(x, area.y + area.h / 2)[1];
    if (dark ? level > kBright : level < kDark) {
      dark = !dark;
      ++turns;
    }
  }
  return turns;
}

}  // namespace hvk3::test
