#include "bench/print.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <mutex>
#include <utility>

#include "bench/random.h"
#include "bench/ridge_flow.h"
#include "bench/ridges.h"

namespace Osv::simulator {
namespace {

constexpr float kWhite = 255;

// Each layer of a print takes its chances from a seed of its own.
enum eLayer : unsigned int { kFlow, kNoise, kOutline, kPressure, kGrain, kPores, kCreases };

std::uint32_t seed_of(unsigned int seed, eLayer layer) {
  constexpr std::uint32_t kLayers = 16;
  return scramble(seed * kLayers + layer);
}

struct Shape {
  int width;
  int height;
  float squareness;  // exponent of the outline: 2 is an ellipse, more is more of a rectangle
};

Shape shape_of(ePrint print) {
  return print == ePrint::Plain ? Shape{320, 400, 2.3F} : Shape{440, 410, 4.5F};
}

float smooth_step(float low, float high, float value) {
  const float part = std::clamp((value - low) / (high - low), 0.0F, 1.0F);
  return part * part * (3 - 2 * part);
}

/// How firmly the skin lies on the platen: 1 where it does, falling to 0 at an uneven edge, with
/// firmer and looser spots.
class Contact {
 public:
  Contact(unsigned int seed, const Shape& shape)
      : m_sShape(shape),
        m_cOutline(seed_of(seed, kOutline), 60),
        m_cPressure(seed_of(seed, kPressure), 70),
        m_cSkin(seed_of(seed, kPressure) + 1, 14) {}

  float at(float x, float y) const {
    const float u = std::abs(2 * x / static_cast<float>(m_sShape.width) - 1);
    const float v = std::abs(2 * y / static_cast<float>(m_sShape.height) - 1);
    const float from_center =
        std::pow(std::pow(u, m_sShape.squareness) + std::pow(v, m_sShape.squareness),
                 1 / m_sShape.squareness);
    const float edge = (0.96F + 0.04F * m_cOutline.at(x, y) - from_center) / 0.14F;
    const float firmness = 0.86F + 0.32F * m_cPressure.at(x, y) + 0.1F * m_cSkin.at(x, y);
    return std::clamp(edge, -1.0F, 1.0F) - 1 + firmness;
  }

 private:
  Shape m_sShape;
  Clouds m_cOutline;
  Clouds m_cPressure;
  Clouds m_cSkin;
};

/// A print in the making: ink per pixel, 0 for none, 1 for black.
class PrintMaker {
 public:
  PrintMaker(unsigned int seed, ePrint print)
      : m_nSeed(seed),
        m_sShape(shape_of(print)),
        m_sRelief(grow_ridges(seed_of(seed, kNoise),
                              RidgeFlow(seed_of(seed, kFlow), m_sShape.width, m_sShape.height),
                              m_sShape.width, m_sShape.height)) {}

  GrayImage make() {
    press();
    open_pores();
    fold();
    GrayImage print{m_sShape.width, m_sShape.height, {}};
    print.pixels.reserve(m_vInk.size());
    for (const float ink : m_vInk) {
      print.pixels.push_back(static_cast<unsigned char>(std::lround(kWhite * (1 - ink))));
    }
    return print;
  }

 private:
  /// Presses the relief on the platen: firmer contact makes ridges wider and darker.
  void press() {
    const Contact contact(m_nSeed, m_sShape);
    const Clouds grain(seed_of(m_nSeed, kGrain), 2.2F);
    m_vInk.reserve(m_sRelief.heights.size());
    for (int y = 0; y < m_sShape.height; ++y) {
      for (int x = 0; x < m_sShape.width; ++x) {
        const auto column = static_cast<float>(x);
        const auto row = static_cast<float>(y);
        const float firmness = contact.at(column, row);
        const float rough = grain.at(column, row);
        const float level = m_sRelief.at(x, y) + 0.25F * rough + 1.5F * (firmness - 0.95F);
        const float ridge = smooth_step(-0.35F, 0.75F, level);
        const float depth = std::clamp(0.45F + 0.5F * firmness + 0.1F * rough, 0.0F, 0.97F);
        const float valley = 0.06F * smooth_step(0.3F, 0.9F, firmness);
        m_vInk.push_back(std::max(ridge * depth, valley));
      }
    }
  }

  /// Sets pores along the ridges, about a ridge's distance apart.
  void open_pores() {
    constexpr int kDistance = 8;
    const Chances chances(seed_of(m_nSeed, kPores));
    std::uint32_t number = 0;
    for (int y = kDistance; y < m_sShape.height - kDistance; y += kDistance) {
      for (int x = kDistance; x < m_sShape.width - kDistance; x += kDistance) {
        number += 3;
        const int dx = static_cast<int>(chances.between(number, 0, kDistance));
        const int dy = static_cast<int>(chances.between(number + 1, 0, kDistance));
        open_pore(x + dx - kDistance / 2, y + dy - kDistance / 2,
                  chances.between(number + 2, 0.1F, 0.75F));
      }
    }
  }

  /// A few creases, in which the skin does not touch.
  void fold() {
    constexpr std::uint32_t kLength = 6;
    const Chances chances(seed_of(m_nSeed, kCreases));
    const auto count = static_cast<std::uint32_t>(chances.between(0, 1, 5));
    for (std::uint32_t i = 1; i <= count; ++i) {
      const std::uint32_t number = i * kLength;
      fold_once(
          {.x = chances.at(number) * static_cast<float>(m_sShape.width),
           .y = chances.between(number + 1, 0.3F, 0.95F) * static_cast<float>(m_sShape.height),
           .slope = chances.between(number + 2, -0.9F, 0.9F),
           .half_length = chances.between(number + 3, 25, 80),
           .half_width = chances.between(number + 4, 0.7F, 1.5F)});
    }
  }

  struct Crease {
    float x;
    float y;
    float slope;
    float half_length;
    float half_width;
  };

  void fold_once(const Crease& crease) {
    constexpr int kReach = 4;
    const Clouds wobble(seed_of(m_nSeed, kCreases) + 1, 25);
    const int half_length = static_cast<int>(crease.half_length);
    for (int step = -half_length; step <= half_length; ++step) {
      const auto away = static_cast<float>(step);
      const float along = away / crease.half_length;
      const float middle =
          crease.y + crease.slope * away + 3 * wobble.at(crease.x + away, crease.y);
      const int row = static_cast<int>(middle);
      for (int y = row - kReach; y <= row + kReach; ++y) {
        const float open =
            crease.half_width * (1 - along * along) + 1 - std::abs(static_cast<float>(y) - middle);
        lighten_pixel(static_cast<int>(crease.x) + step, y, std::clamp(open, 0.0F, 1.0F));
      }
    }
  }

  void lighten_pixel(int x, int y, float part) {
    if (x >= 0 && y >= 0 && x < m_sShape.width && y < m_sShape.height) {
      m_vInk[static_cast<std::size_t>(y) * static_cast<std::size_t>(m_sShape.width) +
             static_cast<std::size_t>(x)] *= 1 - part;
    }
  }

  /// One pore at the highest place nearby.
  void open_pore(int x, int y, float depth) {
    constexpr int kReach = 2;
    constexpr float kRidge = 0.8F;
    int best_x = x;
    int best_y = y;
    for (int v = y - kReach; v <= y + kReach; ++v) {
      for (int u = x - kReach; u <= x + kReach; ++u) {
        if (m_sRelief.at(u, v) > m_sRelief.at(best_x, best_y)) {
          best_x = u;
          best_y = v;
        }
      }
    }
    if (m_sRelief.at(best_x, best_y) >= kRidge) {
      lighten(best_x, best_y, depth);
    }
  }

  void lighten(int x, int y, float depth) {
    constexpr float kSpread = 1.6F;
    for (int v = -2; v <= 2; ++v) {
      for (int u = -2; u <= 2; ++u) {
        lighten_pixel(x + u, y + v, depth * std::exp(-static_cast<float>(u * u + v * v) / kSpread));
      }
    }
  }

  unsigned int m_nSeed;
  Shape m_sShape;
  Relief m_sRelief;
  std::vector<float> m_vInk;
};

}  // namespace

std::shared_ptr<const GrayImage> built_in_print(unsigned int seed, ePrint shape) {
  static std::mutex lock;
  static std::map<std::pair<unsigned int, ePrint>, std::shared_ptr<const GrayImage>> known;
  const std::lock_guard<std::mutex> guard(lock);
  std::shared_ptr<const GrayImage>& print = known[{seed, shape}];
  if (print == nullptr) {
    print = std::make_shared<const GrayImage>(PrintMaker(seed, shape).make());
  }
  return print;
}

}  // namespace Osv::simulator
