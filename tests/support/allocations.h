#pragma once

/// @file
/// A count of the program's allocations, and their failure. Linked in, it replaces the global
/// allocation functions.

namespace Osv::test {

/// Blocks taken with `new` since the program began, on all threads.
long allocations_so_far();

/// Those of them that have not been given back.
long blocks_in_use();

/// While it lives, `new` fails on the thread that made it.
class NoMemory {
 public:
  NoMemory();
  ~NoMemory();
  NoMemory(const NoMemory&) = delete;
  NoMemory& operator=(const NoMemory&) = delete;
};
}  // namespace Osv::test
