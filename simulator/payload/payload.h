#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// @file
/// The payload of a simulated scanner's calibration block: what its engine has to know of the unit.
///
/// | offset  | size | field                                                   |
/// |---------|------|---------------------------------------------------------|
/// | 0       | 8    | signature "CAL", 0, "GEO", 0                            |
/// | 8       | 4    | checksum of everything behind it                        |
/// | 12      | 4    | layout version, 1                                       |
/// | 16      | 8    | width and height of a raw frame                         |
/// | 24      | 8    | width and height of a corrected image                   |
/// | 32      | 4    | its resolution in pixels per metre                      |
/// | 36      | 28   | geometry, seven 32-bit floats in the order of `Geometry` |
/// | 64      | w*h  | white: level of the empty platen, row by row            |
/// | 64+w*h  | w*h  | dark: level of skin in full contact                     |
///
/// Integers are 32-bit and little-endian. Levels are those of a prepared frame, 0 for black, rows
/// from the top.

namespace Osv::simulator {

struct Point {
  double x = 0;
  double y = 0;
};

/// The optics: where in the raw frame a pixel of the corrected image lies. Both are seen upright.
struct Geometry {
  float center_x = 320;  ///< of the raw picture
  float center_y = 240;
  float scale_x = 300;  ///< raw pixels from the centre to the corrected image's edge
  float scale_y = 228;
  float keystone = 0.03F;  ///< growth of a row's width from the middle to the lower edge
  float barrel = 0.02F;    ///< shrinking at the square of the distance from the centre
  float skew = 0.004F;     ///< slant of the columns
};

struct Payload {
  int raw_width = 0;
  int raw_height = 0;
  int final_width = 0;
  int final_height = 0;
  int pixels_per_metre = 0;
  Geometry geometry;
  std::vector<unsigned char> white;  ///< raw_width * raw_height levels
  std::vector<unsigned char> dark;   ///< as many, each below its white
};

/// Where pixel (x, y) of the corrected image lies in the raw frame.
Point to_raw(const Payload& payload, double x, double y);

/// The inverse of `to_raw`, to a hundredth of a pixel.
Point to_final(const Payload& payload, double x, double y);

/// The payload in bytes. @throws std::invalid_argument when the levels don't fit the raw size
std::vector<unsigned char> build_payload(const Payload& payload);

/// Reads a payload. False, with `payload` in no particular state, for one that is not whole.
[[nodiscard]] bool parse_payload(const unsigned char* data, std::size_t size, Payload& payload);

}  // namespace Osv::simulator
