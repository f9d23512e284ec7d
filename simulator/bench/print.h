#pragma once

#include <memory>

#include "ostrevanhvk3_simulator/bench.h"

/// @file
/// The built-in prints.

namespace Osv::simulator {

/// The print of a seed, made at its first use and kept. Any thread may call it.
std::shared_ptr<const GrayImage> built_in_print(unsigned int seed, ePrint shape);

}  // namespace Osv::simulator
