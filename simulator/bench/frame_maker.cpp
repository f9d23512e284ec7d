#include "bench/frame_maker.h"

#include <algorithm>
#include <cstddef>

#include "bench/random.h"
#include "ostrevanhvk3_simulator/bench.h"

namespace Osv::simulator {
namespace {

constexpr std::size_t kPixels = std::size_t{kRawWidth} * kRawHeight;

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

/// How the platen looks in a light: reflectance without a finger, what ink adds, what the finger
/// adds whatever its ink, and what dirt adds.
struct Look {
  float empty;
  float ink;
  float body;
  float dirt;
};

/// In the backlight: live skin glows evenly, paper lets nothing through, and of a mould the ridges
/// show too clearly.
Look backlit_look(eFingerKind kind) {
  switch (kind) {
    case eFingerKind::Printed:
      return {0.05F, 0.04F, -0.02F, 0.02F};
    case eFingerKind::Moulded:
      return {0.05F, 0.17F, 0.10F, 0.02F};
    case eFingerKind::Live:
      break;
  }
  return {0.05F, 0.08F, 0.42F, 0.02F};
}

Look look_of(eLight light, eFingerKind kind) {
  constexpr float kSkin = kSkinReflectance - kEmptyReflectance;
  switch (light) {
    case eLight::Dark:
      return {0.03F, 0.0F, -0.02F, 0.0F};  // a finger shades the platen
    case eLight::Backlight:
      return backlit_look(kind);
    case eLight::Dose:
      break;
  }
  return {kEmptyReflectance, kSkin, 0.0F, kSkin};
}

/// How strongly the finger shows at a distance from its centre: `strength` up to the edge, where it
/// falls to nothing with a slope.
struct Profile {
  float strength;
  float reach;
  float slope;

  float at(float distance) const {
    const float part = (reach - distance) * slope;
    const float rest = part < 0 ? 0 : part;
    return strength * (rest > 1 ? 1 : rest);
  }
};

/// Contact begins in the middle, weakly, and spreads; the settled finger has all of it everywhere.
Profile contact_profile(float contact) {
  return contact > 0 ? Profile{0.65F + 0.35F * contact, 0.45F + 1.35F * contact, 4.0F}
                     : Profile{0, 0, 0};
}

/// The finger's body: wider than the ridges that touch.
Profile body_profile(float contact) {
  return contact > 0 ? Profile{1.0F, 1.05F, 3.0F} : Profile{0, 0, 0};
}

/// How much of the contact a place has that lies so far to the side: all of it within the strip,
/// and less and less beside it.
struct Strip {
  float middle;
  float half_width;

  float at(float across) const {
    constexpr float kSlope = 8;
    const float aside = across < middle ? middle - across : across - middle;
    const float part = 1 - (aside - half_width) * kSlope;
    const float rest = part < 0 ? 0 : part;
    return rest > 1 ? 1 : rest;
  }
};

}  // namespace

FrameMaker::FrameMaker(unsigned int seed) : m_pOptics(optics_of(seed)), m_nNoise(scramble(seed)) {}

void FrameMaker::forget() {
  for (Clean& clean : m_aClean) {
    clean.fresh = false;
  }
}

void FrameMaker::fill(const Exposure& exposure, const Platen& platen, unsigned char* buffer) {
  Clean& kept = m_aClean[static_cast<std::size_t>(exposure.light)];
  if (!kept.fresh || !(kept.exposure == exposure)) {
    expose(exposure, platen, kept);
  }
  const unsigned char* clean = kept.pixels.data();
  for (int y = 0; y < kRawHeight; ++y, clean += kRawWidth, buffer += kRawWidth) {
    const signed char* const noise = noise_table().row(scramble(++m_nNoise));
    for (int x = 0; x < kRawWidth; ++x) {
      buffer[x] = static_cast<unsigned char>(std::clamp(clean[x] + noise[x], 0, 255));
    }
  }
}

void FrameMaker::expose(const Exposure& exposure, const Platen& platen, Clean& clean) const {
  constexpr float kBlack = 255;
  Look look = look_of(exposure.light, exposure.kind);
  look.ink /= kBlack;
  look.dirt /= kBlack;
  const Profile contact = contact_profile(exposure.touch.contact);
  const Profile body = body_profile(exposure.touch.contact);
  const Strip strip = {exposure.touch.middle, exposure.touch.half_width};
  const float dose = static_cast<float>(std::max(exposure.dose, 0)) / kNominalDose;
  clean.pixels.resize(kPixels);
  const float* const offset = m_pOptics->offset.data();
  const float* const gain = m_pOptics->gain.data();
  const unsigned char* const ink = platen.finger.ink.data();
  const unsigned char* const distance = platen.finger.distance.data();
  const unsigned char* const across = platen.finger.across.data();
  const unsigned char* const dirt = platen.dirt.data();
  unsigned char* const pixels = clean.pixels.data();
  // Sums over plain arrays, without tables and branches: compilers make vectors of them.
  for (std::size_t i = 0; i < kPixels; ++i) {
    const float away = static_cast<float>(distance[i]) * kDistanceStep;
    const float touching = strip.at(static_cast<float>(across[i]) * kAcrossStep - kAcrossReach);
    const float reflectance =
        look.empty + static_cast<float>(ink[i]) * look.ink * contact.at(away) * touching +
        look.body * body.at(away) * touching + static_cast<float>(dirt[i]) * look.dirt;
    const float level = offset[i] + gain[i] * reflectance * dose + 0.5F;
    const float rest = level < 0 ? 0 : level;
    pixels[i] = static_cast<unsigned char>(static_cast<int>(rest > kBlack ? kBlack : rest));
  }
  clean.exposure = exposure;
  clean.fresh = true;
}

}  // namespace Osv::simulator
