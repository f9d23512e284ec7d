#pragma once

#include <png.h>

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

/// @file
/// Image files read without the tool's help.

namespace hvk3::test {

/// Gray levels from the top, rows without padding.
using Levels = std::vector<int>;

inline Levels to_levels(const std::string& bytes) {
  Levels levels(bytes.size());
  std::transform(bytes.begin(), bytes.end(), levels.begin(),
                 [](char byte) { return static_cast<unsigned char>(byte); });
  return levels;
}

/// A PNG's levels.
inline Levels png_levels(const std::string& bytes) {
  png_image png = {};
  png.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_memory(&png, bytes.data(), bytes.size()) == 0) {
    throw std::runtime_error(png.message);
  }
  png.format = PNG_FORMAT_GRAY;
  std::string levels(PNG_IMAGE_SIZE(png), '\0');
  if (png_image_finish_read(&png, nullptr, levels.data(), 0, nullptr) == 0) {
    throw std::runtime_error(png.message);
  }
  return to_levels(levels);
}

/// A binary PGM with one comment.
struct Pgm {
  explicit Pgm(const std::string& bytes) {
    std::istringstream file(bytes);
    std::getline(file, magic);
    std::getline(file, comment);
    file >> width >> height >> white;
    file.get();  // one blank ends the header
    levels = to_levels(bytes.substr(static_cast<std::size_t>(file.tellg())));
  }

  std::string magic, comment;
  unsigned int width = 0, height = 0, white = 0;
  Levels levels;
};

}  // namespace hvk3::test
