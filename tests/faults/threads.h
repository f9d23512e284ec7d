#pragma once

#include <cstddef>
#include <set>
#include <string>

/// @file
/// The threads of this process.

namespace Osv::faults {

using Threads = std::set<std::string>;

/// The numbers of all threads. One that was joined can be among them for a moment.
Threads threads();

/// Whether a thread is there that is not among these.
bool has_others(const Threads& known);

/// Waits for the moment in which a thread that was joined is still there.
/// @return whether no thread is left but these
[[nodiscard]] bool are_all(const Threads& known);

}  // namespace Osv::faults
