#include "bench/print.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Osv::simulator {
namespace {

constexpr int kWidth = 320;
constexpr int kHeight = 400;
constexpr double kRidgePeriod = 9;  // pixels, half a millimetre
constexpr double kWhite = 255;

/// Height of the ridge field: its lines of equal height are the ridges.
double field(double x, double y) {
  constexpr double kCoreX = 150;
  constexpr double kCoreY = 190;
  constexpr double kBend = 0.12;
  constexpr double kWaveLength = 37;
  const double from_core = std::hypot(x - kCoreX, (y - kCoreY) * (y < kCoreY ? 1.0 : 0.55));
  return from_core + kBend * (x - kCoreX) + 4 * std::sin((x + 2 * y) / kWaveLength);
}

/// How much of the finger is there: 1 inside, 0 outside, with a soft edge.
double presence(double x, double y) {
  constexpr double kEdge = 0.15;
  const double u = (x - kWidth / 2.0) / (kWidth / 2.0);
  const double v = (y - kHeight / 2.0) / (kHeight / 2.0);
  return std::clamp((1 - std::sqrt(u * u + v * v)) / kEdge, 0.0, 1.0);
}

GrayImage draw_print() {
  constexpr double kValley = 0.12;  // even between the ridges some skin touches
  GrayImage print{kWidth, kHeight, {}};
  print.pixels.reserve(static_cast<std::size_t>(kWidth) * kHeight);
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const double wave = std::cos(2 * std::numbers::pi * field(x, y) / kRidgePeriod);
      const double ridge = kValley + (1 - kValley) * std::clamp(0.5 + 0.8 * wave, 0.0, 1.0);
      print.pixels.push_back(
          static_cast<unsigned char>(std::lround(kWhite * (1 - 0.9 * ridge * presence(x, y)))));
    }
  }
  return print;
}

}  // namespace

const GrayImage& built_in_print() {
  static const GrayImage print = draw_print();
  return print;
}

}  // namespace Osv::simulator
