#pragma once

#include <cstddef>

/// @file
/// How often memory was allocated.
///
/// The executable has an `operator new` of its own, which counts.

namespace Osv::testing_support {

/// Allocations of all threads from the start of the executable.
std::size_t allocations();

/// Counts from its construction on.
class AllocationCount {
 public:
  std::size_t so_far() const { return allocations() - m_nBefore; }

 private:
  std::size_t m_nBefore = allocations();
};

}  // namespace Osv::testing_support
