#pragma once

#include <cstddef>
#include <string>

/// @file
/// Bytes that may be text.

namespace hvk3 {

/// The bytes up to the first zero as text; those that can't be printed are written as \xNN.
std::string printable(const char* bytes, std::size_t size);

}  // namespace hvk3
