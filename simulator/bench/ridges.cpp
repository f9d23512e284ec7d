#include "bench/ridges.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>

namespace Osv::simulator {
namespace {

constexpr float kPi = std::numbers::pi_v<float>;
constexpr std::size_t kDirections = 64;

/// Pixels with a margin of zeros, so that filters may look beyond the edge.
class Plane {
 public:
  static constexpr int kMargin = 12;

  Plane(int width, int height)
      : m_nWidth(width),
        m_nHeight(height),
        m_nStride(static_cast<std::size_t>(width) + kBothMargins),
        m_vPixels(m_nStride * (static_cast<std::size_t>(height) + kBothMargins)) {}

  int width() const { return m_nWidth; }
  int height() const { return m_nHeight; }
  std::size_t stride() const { return m_nStride; }

  /// The pixel at (x, y), which may lie in the margin.
  float* at(int x, int y) { return m_vPixels.data() + position(x, y); }
  const float* at(int x, int y) const { return m_vPixels.data() + position(x, y); }

 private:
  static constexpr std::size_t kBothMargins = std::size_t{2} * kMargin;

  std::size_t position(int x, int y) const {
    return static_cast<std::size_t>(y + kMargin) * stride() + static_cast<std::size_t>(x + kMargin);
  }

  int m_nWidth;
  int m_nHeight;
  std::size_t m_nStride;
  std::vector<float> m_vPixels;
};

/// For each pixel the number of the ridge's direction.
class DirectionMap {
 public:
  /// @param step from pixel to pixel in the print
  DirectionMap(const RidgeFlow& flow, int width, int height, float step) : m_nWidth(width) {
    m_vNumbers.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        const float angle = flow.at(static_cast<float>(x) * step, static_cast<float>(y) * step);
        const auto number = static_cast<std::size_t>(std::lround(angle / kPi * kDirections));
        m_vNumbers.push_back(static_cast<unsigned char>(number % kDirections));
      }
    }
  }

  std::size_t at(int x, int y) const {
    return m_vNumbers[static_cast<std::size_t>(y) * static_cast<std::size_t>(m_nWidth) +
                      static_cast<std::size_t>(x)];
  }

 private:
  int m_nWidth;
  std::vector<unsigned char> m_vNumbers;
};

/// Waves across each direction that fade away from the middle. Rows are filled up to whole vectors
/// of the processor.
template <int Radius>
class WaveBank {
 public:
  static constexpr int kSide = 2 * Radius + 1;
  static constexpr std::size_t kRow = std::size_t{kSide + 3} / 4 * 4;

  WaveBank(float period, float spread) {
    for (std::size_t i = 0; i < kDirections; ++i) {
      fill(m_aWaves[i], kPi * static_cast<float>(i) / kDirections, period, spread);
    }
  }

  /// How much of the wave of a direction is there around (x, y).
  float response(const Plane& plane, int x, int y, std::size_t direction) const {
    const float* weights = m_aWaves[direction].data();
    const float* pixels = plane.at(x - Radius, y - Radius);
    // Sums side by side, which compilers make vectors of; one running sum they must not reorder.
    std::array<float, kRow> sums = {};
    for (int row = 0; row < kSide; ++row, weights += kRow, pixels += plane.stride()) {
      for (std::size_t i = 0; i < kRow; ++i) {
        sums[i] += weights[i] * pixels[i];
      }
    }
    float total = 0;
    for (const float sum : sums) {
      total += sum;
    }
    return total;
  }

 private:
  using Wave = std::array<float, kRow * std::size_t{kSide}>;

  static void fill(Wave& wave, float angle, float period, float spread) {
    float power = 0;
    for (int y = -Radius; y <= Radius; ++y) {
      for (int x = -Radius; x <= Radius; ++x) {
        const auto across =
            static_cast<float>(y) * std::cos(angle) - static_cast<float>(x) * std::sin(angle);
        const auto away = static_cast<float>(x * x + y * y);
        const float swing = std::cos(2 * kPi * across / period);
        const float weight = std::exp(-away / (2 * spread * spread)) * swing;
        wave[static_cast<std::size_t>(y + Radius) * kRow + static_cast<std::size_t>(x + Radius)] =
            weight;
        power += weight * swing;
      }
    }
    for (float& weight : wave) {
      weight /= power;
    }
  }

  std::array<Wave, kDirections> m_aWaves = {};
};

/// One pass of the filter, with growth up to full height.
template <int Radius>
void filter(const WaveBank<Radius>& waves, const DirectionMap& directions, int step,
            const Plane& source, Plane& target) {
  constexpr float kGrowth = 1.7F;
  for (int y = 0; y < source.height(); ++y) {
    float* const row = target.at(0, y);
    for (int x = 0; x < source.width(); ++x) {
      const float height =
          kGrowth * waves.response(source, x, y, directions.at(x / step, y / step));
      row[x] = std::clamp(height, -1.0F, 1.0F);
    }
  }
}

void fill_with_noise(Plane& plane, unsigned int seed) {
  const Chances chances(seed);
  std::uint32_t number = 0;
  for (int y = 0; y < plane.height(); ++y) {
    for (int x = 0; x < plane.width(); ++x) {
      *plane.at(x, y) = chances.between(++number, -1, 1);
    }
  }
}

/// A plane of twice the width and height.
Plane doubled(const Plane& small, int width, int height) {
  Plane large(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const float* const corner = small.at(x / 2, y / 2);
      const float* const below = corner + (y % 2 == 0 ? 0 : small.stride());
      const std::size_t right = x % 2 == 0 ? 0 : 1;
      *large.at(x, y) = (corner[0] + corner[right] + below[0] + below[right]) / 4;
    }
  }
  return large;
}

}  // namespace

Relief grow_ridges(unsigned int seed, const RidgeFlow& flow, int width, int height) {
  // The ridges grow at half the resolution, where a pass costs a fifteenth.
  constexpr int kPasses = 16;
  static const WaveBank<5> coarse_waves(kRidgePeriod / 2, 2.0F);
  static const WaveBank<8> fine_waves(kRidgePeriod, 3.5F);
  const DirectionMap directions(flow, (width + 1) / 2, (height + 1) / 2, 2);
  Plane now((width + 1) / 2, (height + 1) / 2);
  Plane next = now;
  fill_with_noise(now, seed);
  for (int pass = 0; pass < kPasses; ++pass) {
    filter(coarse_waves, directions, 1, now, next);
    std::swap(now, next);
  }
  const Plane large = doubled(now, width, height);
  Plane grown(width, height);
  filter(fine_waves, directions, 2, large, grown);
  Relief relief{width, height, {}};
  for (int y = 0; y < height; ++y) {
    relief.heights.insert(relief.heights.end(), grown.at(0, y), grown.at(0, y) + width);
  }
  return relief;
}

}  // namespace Osv::simulator
