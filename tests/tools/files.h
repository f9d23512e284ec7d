#pragma once

#include <sys/stat.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

/// @file
/// Files that the tool wrote, as bytes.

namespace hvk3::test {

inline std::string read_file(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

inline unsigned int mode_of(const std::string& path) {
  struct stat status = {};
  ::stat(path.c_str(), &status);
  constexpr unsigned int kPermissions = 07777;
  return status.st_mode & kPermissions;
}

/// The resolution chunk of a PNG file with 19685 pixels per metre both ways, as it stands there.
inline std::string chunk_of_500_dpi() { return std::string("pHYs\0\0\x4C\xE5\0\0\x4C\xE5\1", 13); }

/// A 32-bit number of a BMP file.
inline unsigned int number_at(const std::string& file, std::size_t position) {
  unsigned int number = 0;
  for (std::size_t i = 4; i-- > 0;) {
    number = number << 8 | static_cast<unsigned char>(file.at(position + i));
  }
  return number;
}

}  // namespace hvk3::test
