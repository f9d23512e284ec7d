#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "bench/finger.h"
#include "bench/motion.h"
#include "bench/optics.h"

/// @file
/// Frames as the sensor of one unit gives them.

namespace Osv::simulator {

/// The light in which a frame is taken.
enum class eLight {
  Dose,       ///< the scanner's own light, as long as the dose tells
  Dark,       ///< none but what comes in from the room
  Backlight,  ///< through the finger from behind
};

inline constexpr std::size_t kLightCount = 3;

/// The dose at which the platen is exposed as calibrated.
inline constexpr int kNominalDose = 60;

/// What a frame shows.
struct Exposure {
  eLight light = eLight::Dose;
  int dose = kNominalDose;
  Touch touch = {};
  eFingerKind kind = eFingerKind::Live;

  bool operator==(const Exposure&) const = default;
};

/// What lies on the platens.
struct Platen {
  Finger finger;
  std::vector<unsigned char> dirt;  ///< per pixel, see `make_dirt`
};

/// Makes the frames of one unit. One thread at a time.
class FrameMaker {
 public:
  explicit FrameMaker(unsigned int seed);

  /// Fills `buffer` with a frame: rows from the top, empty platen dark, ridges bright.
  void fill(const Exposure& exposure, const Platen& platen, unsigned char* buffer);

  /// Has to be told when something else lies on the platen.
  void forget();

  const Optics& optics() const { return *m_pOptics; }

 private:
  /// A frame without its noise, kept for as long as nothing moves.
  struct Clean {
    std::vector<unsigned char> pixels;
    Exposure exposure;
    bool fresh = false;
  };

  void expose(const Exposure& exposure, const Platen& platen, Clean& clean) const;

  std::shared_ptr<const Optics> m_pOptics;
  std::array<Clean, kLightCount> m_aClean;  // the last one of each light
  std::uint32_t m_nNoise;                   // changes with each frame
};

}  // namespace Osv::simulator
