#pragma once

#include <vector>

/// @file
/// Dirt on the platen.

namespace Osv::simulator {

/// Smears and dust on a part of the platen, per pixel of the raw frame, rows from the top: 0 where
/// it is clean, 255 for what is as dark as skin. The same part is covered in the same way each
/// time.
std::vector<unsigned char> make_dirt(unsigned int percent);

}  // namespace Osv::simulator
