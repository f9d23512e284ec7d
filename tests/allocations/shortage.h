#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "faults/answers.h"

/// @file
/// Memory that the plug-in does not get.

namespace Osv::allocations {

/// Where an allocation of the plug-in failed.
struct FailedAllocation {
  std::size_t step = 0;   ///< of the client's
  std::size_t calls = 0;  ///< into the closed libraries by then
  faults::eThread thread = {};
  bool is_loaders = false;  ///< the loader's, for a library that the plug-in opens

  bool operator==(const FailedAllocation&) const = default;
};

/// Counts the allocations of the plug-in while it lives, and has some of them fail. One at a time;
/// whoever makes it is the client's thread.
///
/// An allocation is the plug-in's if the plug-in asks for it, or the C or C++ library, the loader
/// or another library of the system does on its behalf. Those of the test and of the simulator, the
/// constructors of its libraries included, succeed always.
class Shortage {
 public:
  /// @param first which one fails, counted from 1; 0: none
  /// @param lasting all behind it fail, too
  explicit Shortage(std::size_t first = 0, bool lasting = false);
  ~Shortage();
  Shortage(const Shortage&) = delete;
  Shortage& operator=(const Shortage&) = delete;

  /// The client begins with a step.
  static void begin_step(std::size_t step);

  /// Memory is there, and allocations don't count, until it goes on.
  static void pause();
  static void go_on();

  /// So many allocations there were.
  static std::size_t allocations();

  /// Those that failed during a step, each place once.
  static std::vector<FailedAllocation> failures(std::size_t step);
};

}  // namespace Osv::allocations
