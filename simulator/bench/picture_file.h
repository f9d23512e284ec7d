#pragma once

#include <string>

#include "ostrevanhvk3_simulator/bench.h"

/// @file
/// Pictures from files.

namespace Osv::simulator {

/// Reads an 8-bit gray PNG, or an uncompressed 8-bit BMP with a gray palette.
/// @throws std::runtime_error with the path and what is wrong
GrayImage read_picture(const std::string& path);

}  // namespace Osv::simulator
