#include "bench/finger.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "bench/optics.h"
#include "payload/payload.h"

namespace Osv::simulator {
namespace {

constexpr int kGrid = 16;
constexpr int kGridWidth = kRawWidth / kGrid + 1;
constexpr int kGridHeight = kRawHeight / kGrid + 1;

/// The places in the final image of all raw pixels. Found on a grid and interpolated between: the
/// optics bend so little over a step that it makes less than a hundredth of a pixel.
class PlaceMap {
 public:
  PlaceMap() {
    const Payload payload = common_payload();
    for (int y = 0; y < kGridHeight; ++y) {
      for (int x = 0; x < kGridWidth; ++x) {
        m_vNodes.push_back(to_final(payload, x * kGrid, y * kGrid));
      }
    }
  }

  Point at(int x, int y) const {
    const Point* const node = &m_vNodes[static_cast<std::size_t>(y) / kGrid * kGridWidth +
                                        static_cast<std::size_t>(x) / kGrid];
    const double u = x % kGrid / double{kGrid};
    const double v = y % kGrid / double{kGrid};
    return {
        mix(v, mix(u, node[0].x, node[1].x), mix(u, node[kGridWidth].x, node[kGridWidth + 1].x)),
        mix(v, mix(u, node[0].y, node[1].y), mix(u, node[kGridWidth].y, node[kGridWidth + 1].y))};
  }

 private:
  static double mix(double part, double first, double second) {
    return first + part * (second - first);
  }

  std::vector<Point> m_vNodes;
};

const PlaceMap& place_map() {
  static const PlaceMap map;
  return map;
}

/// A picture with white around it, read between its pixels.
class Sampler {
 public:
  explicit Sampler(const GrayImage& picture) : m_cPicture(picture) {}

  double at(Point point) const {
    const double left = std::floor(point.x);
    const double top = std::floor(point.y);
    const double u = point.x - left;
    const double v = point.y - top;
    const int x = static_cast<int>(left);
    const int y = static_cast<int>(top);
    return (pixel(x, y) * (1 - u) + pixel(x + 1, y) * u) * (1 - v) +
           (pixel(x, y + 1) * (1 - u) + pixel(x + 1, y + 1) * u) * v;
  }

 private:
  double pixel(int x, int y) const {
    constexpr double kWhite = 255;
    const bool outside = x < 0 || y < 0 || x >= m_cPicture.width || y >= m_cPicture.height;
    const auto width = static_cast<std::size_t>(m_cPicture.width);
    return outside ? kWhite
                   : m_cPicture
                         .pixels[static_cast<std::size_t>(y) * width + static_cast<std::size_t>(x)];
  }

  const GrayImage& m_cPicture;
};

}  // namespace

Place centered(int width, int height) {
  return {(kFinalWidth - width) / 2, (kFinalHeight - height) / 2};
}

Finger lay_down(const GrayImage& picture) {
  constexpr double kBlack = 255;
  constexpr double kFarthest = 255;
  const Sampler sampler(picture);
  const Place place = centered(picture.width, picture.height);
  Finger finger;
  finger.ink.reserve(std::size_t{kRawWidth} * kRawHeight);
  finger.distance.reserve(finger.ink.capacity());
  finger.across.reserve(finger.ink.capacity());
  for (int y = 0; y < kRawHeight; ++y) {
    for (int x = 0; x < kRawWidth; ++x) {
      Point point = place_map().at(x, y);
      point = {point.x - place.x, point.y - place.y};
      const double across = 2 * point.x / picture.width - 1;
      const double distance = std::hypot(across, 2 * point.y / picture.height - 1);
      finger.ink.push_back(static_cast<unsigned char>(std::lround(kBlack - sampler.at(point))));
      finger.distance.push_back(
          static_cast<unsigned char>(std::min(distance / double{kDistanceStep}, kFarthest)));
      finger.across.push_back(static_cast<unsigned char>(
          std::clamp((across + double{kAcrossReach}) / double{kAcrossStep}, 0.0, kFarthest)));
    }
  }
  return finger;
}

}  // namespace Osv::simulator
