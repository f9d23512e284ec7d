#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

#include "tools/image_readers.h"

/// @file
/// Finger image records as ISO/IEC 19794-4 (2005) lays them out, read without the tool's help.

namespace hvk3::test {

struct FingerImageRecord {
  /// Reads all fields in their order; the record must be all of `bytes`.
  explicit FingerImageRecord(const std::string& bytes);

  std::string format, version;
  std::uint64_t length, capture_device, acquisition_level, fingers, scale_units;
  std::uint64_t scan_resolution_x, scan_resolution_y, image_resolution_x, image_resolution_y;
  std::uint64_t pixel_depth, compression, reserved;

  std::uint64_t finger_length, position, views, view, quality, impression, width, height;
  std::uint64_t finger_reserved;
  std::string pixels;  ///< as they stand in the record

  /// The gray levels from the top.
  Levels levels() const { return compression == 5 ? png_levels(pixels) : to_levels(pixels); }
};

inline FingerImageRecord::FingerImageRecord(const std::string& bytes) {
  std::size_t at = 0;
  const auto text = [&](std::size_t size) {
    at += size;
    return bytes.substr(at - size, size);
  };
  const auto number = [&](std::size_t size) {
    std::uint64_t value = 0;
    for (const char byte : text(size)) {
      value = value * 256 + static_cast<unsigned char>(byte);
    }
    return value;
  };
  format = text(4), version = text(4);
  length = number(6);
  capture_device = number(2), acquisition_level = number(2);
  fingers = number(1), scale_units = number(1);
  scan_resolution_x = number(2), scan_resolution_y = number(2);
  image_resolution_x = number(2), image_resolution_y = number(2);
  pixel_depth = number(1), compression = number(1), reserved = number(2);
  finger_length = number(4);
  position = number(1), views = number(1), view = number(1);
  quality = number(1), impression = number(1);
  width = number(2), height = number(2), finger_reserved = number(1);
  pixels = bytes.substr(at);
  if (length != bytes.size() || finger_length != 14 + pixels.size()) {
    throw std::runtime_error("the lengths are wrong");
  }
}

}  // namespace hvk3::test
