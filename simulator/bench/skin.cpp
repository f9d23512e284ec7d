#include "bench/skin.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "bench/random.h"

namespace Osv::simulator {
namespace {

constexpr float kWhite = 255;

/// Ink per pixel: 0 for white, 1 for black.
class Ink {
 public:
  explicit Ink(const GrayImage& picture) : m_nWidth(picture.width), m_nHeight(picture.height) {
    m_vInk.reserve(picture.pixels.size());
    for (const unsigned char level : picture.pixels) {
      m_vInk.push_back(1 - static_cast<float>(level) / kWhite);
    }
  }

  int width() const { return m_nWidth; }
  int height() const { return m_nHeight; }

  float& at(int x, int y) { return m_vInk[position(x, y)]; }
  float at(int x, int y) const { return m_vInk[position(x, y)]; }

  /// The mean of each pixel's surroundings, a square of `2 * reach + 1` pixels. Beyond the edge
  /// the outermost pixels go on.
  Ink blurred(int reach) const { return blurred_along(reach, 1, 0).blurred_along(reach, 0, 1); }

  GrayImage picture() const {
    GrayImage picture{m_nWidth, m_nHeight, {}};
    picture.pixels.reserve(m_vInk.size());
    for (const float ink : m_vInk) {
      picture.pixels.push_back(
          static_cast<unsigned char>(std::lround(kWhite * (1 - std::clamp(ink, 0.0F, 1.0F)))));
    }
    return picture;
  }

 private:
  std::size_t position(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(m_nWidth) +
           static_cast<std::size_t>(x);
  }

  Ink blurred_along(int reach, int step_x, int step_y) const {
    Ink result = *this;
    const auto count = static_cast<float>(2 * reach + 1);
    for (int y = 0; y < m_nHeight; ++y) {
      for (int x = 0; x < m_nWidth; ++x) {
        float sum = 0;
        for (int i = -reach; i <= reach; ++i) {
          sum += at(std::clamp(x + i * step_x, 0, m_nWidth - 1),
                    std::clamp(y + i * step_y, 0, m_nHeight - 1));
        }
        result.at(x, y) = sum / count;
      }
    }
    return result;
  }

  int m_nWidth;
  int m_nHeight;
  std::vector<float> m_vInk;
};

float smooth_step(float low, float high, float value) {
  const float part = std::clamp((value - low) / (high - low), 0.0F, 1.0F);
  return part * part * (3 - 2 * part);
}

// Half a ridge's distance and a bit: the mean of ridge and valley.
constexpr int kNeighbourhood = 6;

/// Only the crests of the ridges touch, and not everywhere.
Ink dried(const Ink& normal) {
  constexpr std::uint32_t kSeed = 11;
  const Ink mean = normal.blurred(kNeighbourhood);
  const Clouds gaps(kSeed, 7);
  const Clouds grain(kSeed + 1, 2.5F);
  Ink result = normal;
  for (int y = 0; y < normal.height(); ++y) {
    for (int x = 0; x < normal.width(); ++x) {
      const auto column = static_cast<float>(x);
      const auto row = static_cast<float>(y);
      const float loss = 0.22F * gaps.at(column, row) + 0.2F * grain.at(column, row);
      const float crest = normal.at(x, y) - 1.25F * mean.at(x, y) - loss;
      result.at(x, y) = 0.88F * normal.at(x, y) * smooth_step(0.0F, 0.25F, crest);
    }
  }
  return result;
}

/// Moisture lies beside the ridges, and fills whole valleys where there is much of it.
Ink wetted(const Ink& normal) {
  constexpr std::uint32_t kSeed = 23;
  const Ink mean = normal.blurred(kNeighbourhood);
  const Ink near = normal.blurred(1);
  const Clouds puddles(kSeed, 26);
  const Clouds drops(kSeed + 1, 8);
  Ink result = normal;
  for (int y = 0; y < normal.height(); ++y) {
    for (int x = 0; x < normal.width(); ++x) {
      const auto column = static_cast<float>(x);
      const auto row = static_cast<float>(y);
      const float moisture = 0.5F + 0.55F * puddles.at(column, row) + 0.25F * drops.at(column, row);
      const float full = std::min(2.1F * mean.at(x, y), 1.0F);
      const float level = near.at(x, y) + 0.3F * std::max(moisture, 0.0F) * full;
      result.at(x, y) = std::max(normal.at(x, y), 0.96F * full * smooth_step(0.15F, 0.5F, level));
    }
  }
  return result;
}

}  // namespace

GrayImage with_skin(const GrayImage& picture, eSkin skin) {
  switch (skin) {
    case eSkin::Dry:
      return dried(Ink(picture)).picture();
    case eSkin::Wet:
      return wetted(Ink(picture)).picture();
    case eSkin::Normal:
      break;
  }
  return picture;
}

}  // namespace Osv::simulator
