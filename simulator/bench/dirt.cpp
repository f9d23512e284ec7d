#include "bench/dirt.h"

#include <algorithm>
#include <cstddef>

#include "bench/random.h"
#include "ostrevanhvk3_simulator/bench.h"

namespace Osv::simulator {
namespace {

constexpr std::size_t kPixels = std::size_t{kRawWidth} * kRawHeight;

/// How much dirt a place collects: smears that run together, and specks.
std::vector<float> make_field() {
  const Clouds smears(101, 110);
  const Clouds blots(102, 34);
  const Clouds dust(103, 5);
  std::vector<float> field;
  field.reserve(kPixels);
  for (int y = 0; y < kRawHeight; ++y) {
    for (int x = 0; x < kRawWidth; ++x) {
      const auto column = static_cast<float>(x);
      const auto row = static_cast<float>(y);
      // A hand wipes aslant.
      field.push_back(smears.at(column + row, row) + 0.5F * blots.at(column + row / 2, row) +
                      0.45F * dust.at(column, row));
    }
  }
  return field;
}

}  // namespace

std::vector<unsigned char> make_dirt(unsigned int percent) {
  constexpr std::size_t kWhole = 100;
  constexpr float kThin = 45;  // just thick enough for a measure to see it
  constexpr float kThick = 130;
  std::vector<unsigned char> dirt(kPixels);
  if (percent == 0) {
    return dirt;
  }
  const std::vector<float> field = make_field();
  std::vector<float> sorted = field;
  const std::size_t clean = kPixels - kPixels * percent / kWhole;
  std::nth_element(sorted.begin(), sorted.begin() + static_cast<std::ptrdiff_t>(clean),
                   sorted.end());
  // With everything covered, the cleanest place counts as the limit.
  const float limit = sorted[std::min(clean, kPixels - 1)];
  std::transform(field.begin(), field.end(), dirt.begin(), [&](float value) {
    const float thickness = kThin + kThick * std::min(value - limit, 1.0F);
    return static_cast<unsigned char>(value < limit ? 0 : thickness);
  });
  return dirt;
}

}  // namespace Osv::simulator
