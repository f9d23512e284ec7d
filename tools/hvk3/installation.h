#pragma once

#include <filesystem>

/// @file
/// Where the program itself lies; its libraries stand beside it.

namespace hvk3 {

/// The folder above the one that holds the executable.
std::filesystem::path installation_prefix();

}  // namespace hvk3
