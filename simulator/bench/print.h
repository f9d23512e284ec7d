#pragma once

#include "ostrevanhvk3_simulator/bench.h"

/// @file
/// The built-in print.

namespace Osv::simulator {

/// A simple print of 320 x 400 pixels: arches of ridges that bend around a core, within the oval of
/// a finger tip, fading out at its edge. It has neither axis nor centre of symmetry.
const GrayImage& built_in_print();

}  // namespace Osv::simulator
