#pragma once

#include <string>

/// @file
/// A scanner with a loose plug.

namespace Osv::faults {

/// Unplugs the scanner and plugs it in again, twice in each cycle: while a frame is under way, and
/// while nothing is captured. The client captures again each time, on the same frame grabber.
/// @return what a cycle had that was not predicted, or what grew; empty for nothing
std::string unplug_again_and_again(unsigned int cycles);

}  // namespace Osv::faults
