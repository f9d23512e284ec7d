#include "payload/payload.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <stdexcept>

namespace Osv::simulator {
namespace {

constexpr std::array<unsigned char, 8> kSignature = {'C', 'A', 'L', 0, 'G', 'E', 'O', 0};
constexpr std::uint32_t kLayout = 1;
constexpr std::size_t kChecksumPosition = 8;
constexpr std::size_t kLayoutPosition = 12;
constexpr std::size_t kSizesPosition = 16;
constexpr std::size_t kGeometryPosition = 36;
constexpr std::size_t kHeaderSize = 64;
constexpr int kLargestSide = 4096;

/// The numbers between layout version and geometry, in their order.
constexpr std::array kSizes = {&Payload::raw_width, &Payload::raw_height, &Payload::final_width,
                               &Payload::final_height, &Payload::pixels_per_metre};

constexpr std::array kCoefficients = {&Geometry::center_x, &Geometry::center_y, &Geometry::scale_x,
                                      &Geometry::scale_y,  &Geometry::keystone, &Geometry::barrel,
                                      &Geometry::skew};

/// Eight bytes a step: a payload is long and is read at each opening of a scanner.
std::uint32_t checksum(const unsigned char* data, std::size_t size) {
  constexpr std::uint64_t kPrime = 0x100000001B3U;
  std::uint64_t sum = 0xCBF29CE484222325U;
  std::uint64_t word = 0;
  for (; size >= sizeof(word); size -= sizeof(word), data += sizeof(word)) {
    std::memcpy(&word, data, sizeof(word));
    sum = (sum ^ word) * kPrime;
  }
  for (; size > 0; --size, ++data) {
    sum = (sum ^ *data) * kPrime;
  }
  return static_cast<std::uint32_t>(sum ^ (sum >> 32));
}

bool is_side(int side) { return side > 1 && side <= kLargestSide; }

std::size_t raw_pixels(const Payload& payload) {
  return static_cast<std::size_t>(payload.raw_width) * static_cast<std::size_t>(payload.raw_height);
}

bool has_sane_sizes(const Payload& payload) {
  return is_side(payload.raw_width) && is_side(payload.raw_height) &&
         is_side(payload.final_width) && is_side(payload.final_height) &&
         payload.pixels_per_metre > 0;
}

bool has_sane_geometry(const Geometry& geometry) {
  return std::all_of(kCoefficients.begin(), kCoefficients.end(), [&](auto coefficient) {
    return std::abs(geometry.*coefficient) < kLargestSide;  // false for not-a-number too
  });
}

std::uint32_t load(const unsigned char* data, std::size_t position) {
  std::uint32_t value = 0;
  std::memcpy(&value, data + position, sizeof(value));
  return value;
}

void load_numbers(const unsigned char* data, Payload& payload) {
  for (std::size_t i = 0; i < kSizes.size(); ++i) {
    payload.*kSizes[i] = static_cast<int>(load(data, kSizesPosition + i * sizeof(int)));
  }
  for (std::size_t i = 0; i < kCoefficients.size(); ++i) {
    std::memcpy(&(payload.geometry.*kCoefficients[i]), data + kGeometryPosition + i * sizeof(float),
                sizeof(float));
  }
}

/// A number on its way into the payload.
template <class T>
void store(std::vector<unsigned char>& bytes, std::size_t position, T value) {
  std::memcpy(bytes.data() + position, &value, sizeof(value));
}

}  // namespace

Point to_raw(const Payload& payload, double x, double y) {
  const Geometry& geometry = payload.geometry;
  const double half_width = (payload.final_width - 1) / 2.0;
  const double half_height = (payload.final_height - 1) / 2.0;
  const double v = (y - half_height) / half_height;
  const double u = (x - half_width) / half_width * (1 + double{geometry.keystone} * v) +
                   double{geometry.skew} * v;
  const double shrink = 1 - double{geometry.barrel} * (u * u + v * v);
  return {double{geometry.center_x} + double{geometry.scale_x} * u * shrink,
          double{geometry.center_y} + double{geometry.scale_y} * v * shrink};
}

Point to_final(const Payload& payload, double x, double y) {
  constexpr int kMostSteps = 20;
  constexpr double kClose = 0.002;
  const double step_x = (payload.final_width - 1) / 2.0 / double{payload.geometry.scale_x};
  const double step_y = (payload.final_height - 1) / 2.0 / double{payload.geometry.scale_y};
  Point found = {x * payload.final_width / payload.raw_width,
                 y * payload.final_height / payload.raw_height};
  // The optics are close to a mere scale, so going by the scale converges fast.
  for (int i = 0; i < kMostSteps; ++i) {
    const Point there = to_raw(payload, found.x, found.y);
    const Point error = {(x - there.x) * step_x, (y - there.y) * step_y};
    found = {found.x + error.x, found.y + error.y};
    if (std::abs(error.x) + std::abs(error.y) < kClose) {
      break;
    }
  }
  return found;
}

std::vector<unsigned char> build_payload(const Payload& payload) {
  const std::size_t pixels = raw_pixels(payload);
  if (!has_sane_sizes(payload) || payload.white.size() != pixels || payload.dark.size() != pixels) {
    throw std::invalid_argument("the levels of a payload must fit its raw size");
  }
  std::vector<unsigned char> bytes(kHeaderSize + 2 * pixels);
  std::copy(kSignature.begin(), kSignature.end(), bytes.begin());
  store(bytes, kLayoutPosition, kLayout);
  for (std::size_t i = 0; i < kSizes.size(); ++i) {
    store(bytes, kSizesPosition + i * sizeof(int), payload.*kSizes[i]);
  }
  for (std::size_t i = 0; i < kCoefficients.size(); ++i) {
    store(bytes, kGeometryPosition + i * sizeof(float), payload.geometry.*kCoefficients[i]);
  }
  std::memcpy(bytes.data() + kHeaderSize, payload.white.data(), pixels);
  std::memcpy(bytes.data() + kHeaderSize + pixels, payload.dark.data(), pixels);
  store(bytes, kChecksumPosition,
        checksum(bytes.data() + kLayoutPosition, bytes.size() - kLayoutPosition));
  return bytes;
}

bool parse_payload(const unsigned char* data, std::size_t size, Payload& payload) {
  if (data == nullptr || size < kHeaderSize ||
      !std::equal(kSignature.begin(), kSignature.end(), data) ||
      load(data, kLayoutPosition) != kLayout) {
    return false;
  }
  load_numbers(data, payload);
  const std::size_t pixels = has_sane_sizes(payload) ? raw_pixels(payload) : 0;
  if (pixels == 0 || size != kHeaderSize + 2 * pixels || !has_sane_geometry(payload.geometry) ||
      load(data, kChecksumPosition) != checksum(data + kLayoutPosition, size - kLayoutPosition)) {
    return false;
  }
  const unsigned char* const levels = data + kHeaderSize;
  payload.white.assign(levels, levels + pixels);
  payload.dark.assign(levels + pixels, levels + 2 * pixels);
  return true;
}

}  // namespace Osv::simulator
