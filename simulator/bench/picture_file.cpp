#include "bench/picture_file.h"

#include <png.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <vector>

namespace Osv::simulator {
namespace {

using Bytes = std::vector<unsigned char>;

constexpr int kLargestSide = 4096;

struct Failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

Bytes read_file(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    throw Failure("it can't be opened");
  }
  Bytes bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (file.bad()) {
    throw Failure("it can't be read");
  }
  return bytes;
}

GrayImage make_image(std::int64_t width, std::int64_t height) {
  if (width < 1 || height < 1 || width > kLargestSide || height > kLargestSide) {
    throw Failure("its size is not between 1 and 4096 pixels");
  }
  return {static_cast<int>(width), static_cast<int>(height),
          Bytes(static_cast<std::size_t>(width * height))};
}

/// Frees what libpng holds for an image.
struct PngGuard {
  png_image image = {};
  PngGuard() { image.version = PNG_IMAGE_VERSION; }
  ~PngGuard() { png_image_free(&image); }
  PngGuard(const PngGuard&) = delete;
  PngGuard& operator=(const PngGuard&) = delete;
};

bool is_8_bit_gray_png(const Bytes& file) {
  constexpr std::size_t kDepthPosition = 24;  // in the header chunk, the colour type behind it
  constexpr unsigned char kDepth = 8;
  constexpr unsigned char kGray = 0;
  return file.size() > kDepthPosition + 1 && file[kDepthPosition] == kDepth &&
         file[kDepthPosition + 1] == kGray;
}

GrayImage read_png(const Bytes& file) {
  PngGuard png;
  if (!is_8_bit_gray_png(file)) {
    throw Failure("it is not 8-bit gray");
  }
  if (png_image_begin_read_from_memory(&png.image, file.data(), file.size()) == 0) {
    throw Failure(png.image.message);
  }
  png.image.format = PNG_FORMAT_GRAY;
  GrayImage picture = make_image(png.image.width, png.image.height);
  if (png_image_finish_read(&png.image, nullptr, picture.pixels.data(), 0, nullptr) == 0) {
    throw Failure(png.image.message);
  }
  return picture;
}

/// The fields of a BMP file that count here, at their places in the file.
class BmpFile {
 public:
  static constexpr std::size_t kHeaderSize = 54;

  explicit BmpFile(const Bytes& bytes) : m_vBytes(bytes) {
    if (bytes.size() < kHeaderSize) {
      throw Failure("it is cut off");
    }
  }

  std::size_t pixel_position() const { return number<std::uint32_t>(10); }
  std::size_t palette_position() const { return 14 + std::size_t{number<std::uint32_t>(14)}; }
  std::int32_t width() const { return number<std::int32_t>(18); }
  std::int32_t height() const { return number<std::int32_t>(22); }  ///< negative: from the top
  bool is_plain_8_bit() const {
    constexpr int kDepth = 8;
    return number<std::uint16_t>(28) == kDepth && number<std::uint32_t>(30) == 0;
  }
  std::size_t colours() const {
    constexpr std::size_t kAll = 256;
    const std::size_t used = number<std::uint32_t>(46);
    return used == 0 ? kAll : std::min(used, kAll);
  }

 private:
  template <class T>
  T number(std::size_t position) const {
    T value{};
    std::memcpy(&value, m_vBytes.data() + position, sizeof(value));
    return value;
  }

  const Bytes& m_vBytes;
};

/// The gray level of each palette index.
std::array<unsigned char, 256> gray_palette(const Bytes& file, const BmpFile& bmp) {
  constexpr std::size_t kEntry = 4;
  std::array<unsigned char, 256> levels = {};
  if (bmp.palette_position() + kEntry * bmp.colours() > file.size()) {
    throw Failure("it is cut off");
  }
  const unsigned char* entry = file.data() + bmp.palette_position();
  for (std::size_t i = 0; i < bmp.colours(); ++i, entry += kEntry) {
    if (entry[0] != entry[1] || entry[1] != entry[2]) {
      throw Failure("it is not 8-bit gray");
    }
    levels[i] = entry[0];
  }
  return levels;
}

GrayImage read_bmp(const Bytes& file) {
  const BmpFile bmp(file);
  if (!bmp.is_plain_8_bit()) {
    throw Failure("it is not 8-bit gray");
  }
  const std::array<unsigned char, 256> levels = gray_palette(file, bmp);
  const bool from_top = bmp.height() < 0;
  GrayImage picture = make_image(bmp.width(), std::abs(std::int64_t{bmp.height()}));
  const auto width = static_cast<std::size_t>(picture.width);
  const auto height = static_cast<std::size_t>(picture.height);
  const std::size_t stride = (width + 3) / 4 * 4;
  if (bmp.pixel_position() > file.size() ||
      stride * height - (stride - width) > file.size() - bmp.pixel_position()) {
    throw Failure("it is cut off");
  }
  for (std::size_t y = 0; y < height; ++y) {
    const std::size_t row = from_top ? y : height - 1 - y;
    const unsigned char* const source = file.data() + bmp.pixel_position() + row * stride;
    std::transform(source, source + width, picture.pixels.data() + y * width,
                   [&](unsigned char index) { return levels[index]; });
  }
  return picture;
}

GrayImage read_any(const std::string& path) {
  const Bytes file = read_file(path);
  constexpr std::array<unsigned char, 4> kPng = {0x89, 'P', 'N', 'G'};
  if (file.size() >= kPng.size() && std::equal(kPng.begin(), kPng.end(), file.begin())) {
    return read_png(file);
  }
  if (file.size() >= 2 && file[0] == 'B' && file[1] == 'M') {
    return read_bmp(file);
  }
  throw Failure("it is neither PNG nor BMP");
}

}  // namespace

GrayImage read_picture(const std::string& path) {
  try {
    return read_any(path);
  } catch (const Failure& failure) {
    throw std::runtime_error("the picture can't be used: " + path + ": " + failure.what());
  }
}

}  // namespace Osv::simulator
