#pragma once

#include <optional>

/// @file
/// The blocks of memory that a program holds.

namespace Osv::faults {

/// Blocks that were allocated and not yet freed, by anybody in this process; nothing where a
/// sanitizer allocates, which looks for leaks itself.
std::optional<long> live_blocks();

}  // namespace Osv::faults
