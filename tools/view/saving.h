#pragma once

#include <string>

/// @file
/// Where images go.

namespace hvk3::view {

/// The first path that is free: `finger.png` gives finger-1.png, finger-2.png and so on.
std::string free_path(const std::string& pattern);

}  // namespace hvk3::view
