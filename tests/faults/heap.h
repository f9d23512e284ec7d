#pragma once

#include <cstddef>
#include <optional>

/// @file
/// The blocks of memory that a program holds.

namespace Osv::faults {

/// Blocks that were allocated and not yet freed, by anybody in this process; nothing where they are
/// not counted.
std::optional<long> live_blocks();

/// The bytes in them, as they can be used: a block may have some more than were asked for, at one
/// time and not at another.
std::optional<long> live_bytes();
constexpr std::size_t kMoreThanAsked = 16;

/// Whether a sanitizer allocates.
bool is_sanitized();

/// Whether an allocation fails, asked on the thread that makes it.
/// @param caller the place that the block goes to
using Refusal = bool (*)(const void* caller);

/// Has every allocation of this process decided, null for none.
void refuse_allocations(Refusal refuses);

}  // namespace Osv::faults
