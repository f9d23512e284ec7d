#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "payload/payload.h"

/// @file
/// The optics of one unit: what differs from scanner to scanner.

namespace Osv::simulator {

/// Reflectance of the empty platen and of skin in full contact.
inline constexpr float kEmptyReflectance = 0.10F;
inline constexpr float kSkinReflectance = 0.95F;

/// Per pixel of the raw frame, rows from the top, in levels of the sensor at the nominal dose.
struct Optics {
  std::vector<float> offset;  ///< level without any light
  std::vector<float> gain;    ///< level that full reflectance adds
};

/// Payload of a simulated unit without its levels: sizes and geometry, which all units share.
Payload common_payload();

/// Light and fixed pattern of the unit of that seed. Kept for the next call.
std::shared_ptr<const Optics> optics_of(unsigned int seed);

/// The part of the full frame that a unit sees: all of it, or the middle.
struct View {
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;

  bool is_full() const { return left == 0 && top == 0; }
};

/// @throws std::invalid_argument when the full frame has no such middle
View view_of(int width, int height);

/// The payload that corrects frames of these optics, as far as they are in view.
std::vector<unsigned char> payload_of(const Optics& optics, const View& view);

}  // namespace Osv::simulator
