#pragma once

#include "ostrevanhvk3_simulator/bench.h"

/// @file
/// How wet the skin is.

namespace Osv::simulator {

/// The picture as skin of that state prints it: dry ridges are thin and broken, wet ones run into
/// each other. Normal skin leaves the picture as it is.
GrayImage with_skin(const GrayImage& picture, eSkin skin);

}  // namespace Osv::simulator
