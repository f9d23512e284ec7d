#pragma once

#include <optional>

/// @file
/// The blocks of memory that a program holds.

namespace Osv::faults {

/// Blocks that were allocated and not yet freed, by anybody in this process; nothing where a
/// sanitizer allocates, which looks for leaks itself.
std::optional<long> live_blocks();

/// Whether an allocation fails, asked on the thread that makes it.
/// @param caller the place that the block goes to
using Refusal = bool (*)(const void* caller);

/// Has every allocation of this process decided, null for none.
void refuse_allocations(Refusal refuses);

}  // namespace Osv::faults
