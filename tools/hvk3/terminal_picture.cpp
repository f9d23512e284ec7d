#include "hvk3/terminal_picture.h"

#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <numeric>
#include <regex>
#include <string_view>
#include <vector>

namespace hvk3 {
namespace {

/// The image made smaller: the mean of each patch of pixels.
class Thumbnail {
 public:
  Thumbnail(Osv::lx::ImageView image, std::size_t width, std::size_t height)
      : m_nWidth(width), m_nHeight(height), m_vPixels(width * height) {
    for (std::size_t y = 0; y < height; ++y) {
      for (std::size_t x = 0; x < width; ++x) {
        m_vPixels[y * width + x] = patch_mean(image, x, y);
      }
    }
  }

  std::size_t width() const { return m_nWidth; }
  std::size_t height() const { return m_nHeight; }
  unsigned int at(std::size_t x, std::size_t y) const {
    return m_vPixels[std::min(y, m_nHeight - 1) * m_nWidth + x];
  }

 private:
  unsigned char patch_mean(Osv::lx::ImageView image, std::size_t x, std::size_t y) const {
    const std::size_t left = x * image.width() / m_nWidth;
    const std::size_t right = (x + 1) * image.width() / m_nWidth;
    const std::size_t top = y * image.height() / m_nHeight;
    const std::size_t bottom = (y + 1) * image.height() / m_nHeight;
    std::size_t sum = 0;
    for (std::size_t row = top; row < bottom; ++row) {
      const unsigned char* const begin = image.row_from_top(row);
      sum = std::accumulate(begin + left, begin + right, sum);
    }
    const std::size_t pixels = std::max<std::size_t>(1, (right - left) * (bottom - top));
    return static_cast<unsigned char>(sum / pixels);
  }

  std::size_t m_nWidth;
  std::size_t m_nHeight;
  std::vector<unsigned char> m_vPixels;
};

Thumbnail shrink(Osv::lx::ImageView image, const Canvas& canvas) {
  const double scale =
      std::min({1.0, static_cast<double>(canvas.columns) / static_cast<double>(image.width()),
                2.0 * static_cast<double>(canvas.rows) / static_cast<double>(image.height())});
  const auto scaled = [scale](std::size_t side) {
    return std::max<std::size_t>(1, static_cast<std::size_t>(static_cast<double>(side) * scale));
  };
  return Thumbnail(image, scaled(image.width()), scaled(image.height()));
}

std::string true_colour(unsigned int gray) {
  const std::string level = std::to_string(gray);
  return ";2;" + level + ';' + level + ';' + level;
}

/// The palette has black at 16, white at 231 and 24 grays from 8 to 238 in steps of 10 at 232.
std::string palette_colour(unsigned int gray) {
  constexpr unsigned int kLightest = 243;
  if (gray < 4) {
    return ";5;16";
  }
  return ";5;" + std::to_string(gray >= kLightest ? 231 : 232 + std::min((gray - 3) / 10, 23U));
}

/// One line of half blocks: the upper pixel is the sign's colour, the lower one its background.
std::string half_blocks(const Thumbnail& picture, std::size_t y, std::string (*colour)(unsigned)) {
  std::string line;
  for (std::size_t x = 0; x < picture.width(); ++x) {
    line += "\x1b[38" + colour(picture.at(x, y)) + ";48" + colour(picture.at(x, y + 1)) + "m\u2580";
  }
  return line + "\x1b[0m\n";
}

std::string plain_signs(const Thumbnail& picture, std::size_t y) {
  constexpr std::string_view kFromBlack = "@%#*+=-:. ";
  std::string line;
  for (std::size_t x = 0; x < picture.width(); ++x) {
    const std::size_t gray = (picture.at(x, y) + picture.at(x, y + 1)) / 2;
    line += kFromBlack[gray * kFromBlack.size() / 256];
  }
  return line + '\n';
}

std::string draw_line(const Thumbnail& picture, std::size_t y, eShades shades) {
  switch (shades) {
    case eShades::TrueColour:
      return half_blocks(picture, y, &true_colour);
    case eShades::Palette:
      return half_blocks(picture, y, &palette_colour);
    default:
      return plain_signs(picture, y);
  }
}

std::string environment(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr ? value : "";
}

bool shows_half_blocks() {
  std::setlocale(LC_CTYPE, "");
  return ::isatty(STDOUT_FILENO) != 0 && environment("NO_COLOR").empty() &&
         std::string_view(::nl_langinfo(CODESET)) == "UTF-8";
}

/// Those that show no colours, or at most 16, of which too few are gray.
bool has_few_colours(const std::string& type) {
  static const std::regex kFew("ansi.*|cons25.*|linux|sun.*|vt[0-9].*|.*-(8|16)color|.*-mono");
  return std::regex_match(type, kFew);
}

eShades terminal_shades() {
  return shows_half_blocks() ? shades_for(environment("TERM"), environment("COLORTERM"))
                             : eShades::Plain;
}

}  // namespace

/// Hardly any terminal says that it has 256 colours, and nearly all have them: the few others are
/// named. Where there is no cursor to move there are no colours either, whatever COLORTERM of the
/// terminal around it says.
eShades shades_for(const std::string& type, const std::string& colours) {
  if (type.empty() || type == "dumb") {
    return eShades::Plain;
  }
  if (colours == "truecolor" || colours == "24bit") {
    return eShades::TrueColour;
  }
  return has_few_colours(type) ? eShades::Plain : eShades::Palette;
}

Canvas terminal_canvas(eShades shades) {
  Canvas canvas;
  canvas.shades = shades == eShades::Auto ? terminal_shades() : shades;
  winsize size = {};
  if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 && size.ws_row > 1) {
    canvas.columns = size.ws_col;
    canvas.rows = size.ws_row - 1U;  // the prompt comes below
  }
  return canvas;
}

std::string draw(Osv::lx::ImageView image, const Canvas& canvas) {
  const Thumbnail picture = shrink(image, canvas);
  std::string lines;
  for (std::size_t y = 0; y < picture.height(); y += 2) {
    lines += draw_line(picture, y, canvas.shades);
  }
  return lines;
}

}  // namespace hvk3
