#include "bench/optics.h"

#include <cmath>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>

#include "bench/random.h"
#include "ostrevanhvk3_simulator/bench.h"

namespace Osv::simulator {
namespace {

constexpr std::size_t kPixels = std::size_t{kRawWidth} * kRawHeight;

/// Uneven light: brightest beside the centre and weaker towards the edges, differently per unit.
class Light {
 public:
  explicit Light(std::uint32_t seed)
      : m_nX((fraction(seed) - 0.5F) * 0.5F),
        m_nY((fraction(seed + 1) - 0.5F) * 0.5F),
        m_nFall(0.13F + 0.05F * fraction(seed + 2)),
        m_nPeak(200.0F + 10.0F * fraction(seed + 3)) {}

  float at(int x, int y) const {
    const float u = 2.0F * static_cast<float>(x) / kRawWidth - 1 - m_nX;
    const float v = 2.0F * static_cast<float>(y) / kRawHeight - 1 - m_nY;
    return m_nPeak * (1 - m_nFall * (u * u + v * v) * 0.6F);
  }

 private:
  float m_nX;
  float m_nY;
  float m_nFall;
  float m_nPeak;
};

unsigned char prepared(float raw) {
  constexpr float kWhite = 255;
  return static_cast<unsigned char>(std::lround(kWhite - raw));
}

Optics make_optics(unsigned int seed) {
  constexpr float kDarkLevel = 6;
  constexpr float kPixelOffset = 4;
  constexpr float kColumnOffset = 3;
  constexpr float kPixelGain = 0.06F;
  const std::uint32_t base = scramble(seed + 0x51ED270BU);
  const Light light(base);
  Optics optics{std::vector<float>(kPixels), std::vector<float>(kPixels)};
  std::uint32_t pixel = 0;
  for (int y = 0; y < kRawHeight; ++y) {
    for (int x = 0; x < kRawWidth; ++x, ++pixel) {
      const std::uint32_t own = base + 2 * pixel;
      const auto column = static_cast<std::uint32_t>(x);
      optics.offset[pixel] =
          kDarkLevel + kPixelOffset * fraction(own) + kColumnOffset * fraction(~base + column);
      optics.gain[pixel] = light.at(x, y) * (1 + kPixelGain * (fraction(own + 1) - 0.5F));
    }
  }
  return optics;
}

/// What is in view has the same scale, whatever else is.
Payload common_payload_of(const View& view) {
  Payload payload = common_payload();
  const float wide = static_cast<float>(view.width) / kRawWidth;
  const float high = static_cast<float>(view.height) / kRawHeight;
  payload.raw_width = view.width;
  payload.raw_height = view.height;
  payload.final_width = static_cast<int>(std::lround(wide * kFinalWidth));
  payload.final_height = static_cast<int>(std::lround(high * kFinalHeight));
  payload.geometry.center_x -= static_cast<float>(view.left);
  payload.geometry.center_y -= static_cast<float>(view.top);
  payload.geometry.scale_x *= wide;
  payload.geometry.scale_y *= high;
  return payload;
}

}  // namespace

Payload common_payload() {
  return {.raw_width = kRawWidth,
          .raw_height = kRawHeight,
          .final_width = kFinalWidth,
          .final_height = kFinalHeight,
          .pixels_per_metre = kPixelsPerMetre,
          .geometry = {},
          .white = {},
          .dark = {}};
}

std::shared_ptr<const Optics> optics_of(unsigned int seed) {
  static std::mutex lock;
  static std::map<unsigned int, std::shared_ptr<const Optics>> known;
  const std::lock_guard<std::mutex> guard(lock);
  std::shared_ptr<const Optics>& optics = known[seed];
  if (optics == nullptr) {
    optics = std::make_shared<const Optics>(make_optics(seed));
  }
  return optics;
}

View view_of(int width, int height) {
  const auto is_middle = [](int length, int whole) {
    return length > 1 && length <= whole && length % 2 == 0;
  };
  if (!is_middle(width, kRawWidth) || !is_middle(height, kRawHeight)) {
    throw std::invalid_argument("no scanner has frames of " + std::to_string(width) + " x " +
                                std::to_string(height) + " pixels");
  }
  return {(kRawWidth - width) / 2, (kRawHeight - height) / 2, width, height};
}

std::vector<unsigned char> payload_of(const Optics& optics, const View& view) {
  Payload payload = common_payload_of(view);
  for (int y = view.top; y < view.top + view.height; ++y) {
    for (int x = view.left; x < view.left + view.width; ++x) {
      const auto i = static_cast<std::size_t>(y) * kRawWidth + static_cast<std::size_t>(x);
      payload.white.push_back(prepared(optics.offset[i] + optics.gain[i] * kEmptyReflectance));
      payload.dark.push_back(prepared(optics.offset[i] + optics.gain[i] * kSkinReflectance));
    }
  }
  return build_payload(payload);
}

}  // namespace Osv::simulator
