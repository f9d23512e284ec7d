#include "bench/frame_maker.h"

#include <algorithm>
#include <cstddef>

#include "ostrevanhvk3_simulator/bench.h"

namespace Osv::simulator {
namespace {

constexpr std::size_t kPixels = std::size_t{kRawWidth} * kRawHeight;
constexpr std::size_t kLevels = 256;

/// Noise of -2 to 2 levels, small values being more frequent.
class NoiseTable {
 public:
  static constexpr std::uint32_t kSize = 1U << 16U;

  NoiseTable() : m_vNoise(kSize + kRawWidth) {
    constexpr std::uint32_t kSteps = 3;
    for (std::uint32_t i = 0; i < m_vNoise.size(); ++i) {
      const std::uint32_t random = scramble(i + 0x2545F491U);
      m_vNoise[i] = static_cast<signed char>(static_cast<int>(random % kSteps) +
                                             static_cast<int>((random >> 16U) % kSteps) - 2);
    }
  }

  /// Noise for a row of the frame.
  const signed char* row(std::uint32_t random) const { return m_vNoise.data() + random % kSize; }

 private:
  std::vector<signed char> m_vNoise;
};

const NoiseTable& noise_table() {
  static const NoiseTable table;
  return table;
}

/// How the platen looks in a light: reflectance without a finger, what ink adds, and what the
/// finger adds whatever its ink.
struct Look {
  float empty;
  float ink;
  float body;
};

Look look_of(eLight light) {
  switch (light) {
    case eLight::Dark:
      return {0.03F, 0.0F, -0.02F};  // a finger shades the platen
    case eLight::Backlight:
      return {0.05F, 0.08F, 0.42F};
    case eLight::Dose:
      break;
  }
  return {kEmptyReflectance, kSkinReflectance - kEmptyReflectance, 0.0F};
}

using Weights = std::array<float, kLevels>;

/// Contact by distance from the finger's centre. It begins in the middle, weakly, and spreads; the
/// settled finger has all of it everywhere.
Weights contact_weights(float contact) {
  constexpr float kSoftness = 4;
  Weights weights = {};
  if (contact > 0) {
    const float reach = 0.45F + 1.35F * contact;
    const float strength = 0.65F + 0.35F * contact;
    for (std::size_t i = 0; i < kLevels; ++i) {
      const float distance = static_cast<float>(i) * kDistanceStep;
      weights[i] = strength * std::clamp((reach - distance) * kSoftness, 0.0F, 1.0F);
    }
  }
  return weights;
}

/// The finger's body: wider than the ridges that touch, with a soft edge.
Weights body_weights(float contact) {
  constexpr float kReach = 1.05F;
  constexpr float kSoftness = 3;
  Weights weights = {};
  if (contact > 0) {
    for (std::size_t i = 0; i < kLevels; ++i) {
      const float distance = static_cast<float>(i) * kDistanceStep;
      weights[i] = std::clamp((kReach - distance) * kSoftness, 0.0F, 1.0F);
    }
  }
  return weights;
}

}  // namespace

FrameMaker::FrameMaker(unsigned int seed) : m_pOptics(optics_of(seed)), m_nNoise(scramble(seed)) {}

void FrameMaker::forget() {
  for (Clean& clean : m_aClean) {
    clean.fresh = false;
  }
}

void FrameMaker::fill(const Exposure& exposure, const Finger& finger, unsigned char* buffer) {
  Clean& kept = m_aClean[static_cast<std::size_t>(exposure.light)];
  if (!kept.fresh || !(kept.exposure == exposure)) {
    expose(exposure, finger, kept);
  }
  const unsigned char* clean = kept.pixels.data();
  for (int y = 0; y < kRawHeight; ++y, clean += kRawWidth, buffer += kRawWidth) {
    const signed char* const noise = noise_table().row(scramble(++m_nNoise));
    for (int x = 0; x < kRawWidth; ++x) {
      buffer[x] = static_cast<unsigned char>(std::clamp(clean[x] + noise[x], 0, 255));
    }
  }
}

void FrameMaker::expose(const Exposure& exposure, const Finger& finger, Clean& clean) const {
  const Look look = look_of(exposure.light);
  const Weights contact = contact_weights(exposure.contact);
  const Weights body = body_weights(exposure.contact);
  const float dose = static_cast<float>(std::max(exposure.dose, 0)) / kNominalDose;
  constexpr float kBlack = 255;
  std::array<float, kLevels> ink = {};
  for (std::size_t i = 0; i < kLevels; ++i) {
    ink[i] = look.ink * static_cast<float>(i) / kBlack;
  }
  const Optics& optics = *m_pOptics;
  clean.pixels.resize(kPixels);
  for (std::size_t i = 0; i < kPixels; ++i) {
    const unsigned char distance = finger.distance[i];
    const float reflectance =
        look.empty + ink[finger.ink[i]] * contact[distance] + look.body * body[distance];
    const float level = optics.offset[i] + optics.gain[i] * reflectance * dose;
    clean.pixels[i] = static_cast<unsigned char>(std::clamp(level + 0.5F, 0.0F, kBlack));
  }
  clean.exposure = exposure;
  clean.fresh = true;
}

}  // namespace Osv::simulator
