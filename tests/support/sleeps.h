#pragma once

#include <chrono>
#include <vector>

/// @file
/// The program's own sleeping. In a program that links this nothing sleeps: `nanosleep` and a wait
/// for a condition with a time limit, which is how the plug-in's waits end up in the system, write
/// themselves down and are over at once.

namespace Osv::test {

/// The sleeps since the object was made. One at a time.
class Sleeps {
 public:
  Sleeps() { forget(); }

  /// Forgets the sleeps so far.
  void forget();

  /// Calls of `nanosleep` with exactly these arguments.
  long nanosleeps(long seconds, long nanoseconds) const;

  /// All calls of `nanosleep`.
  long nanosleeps() const;

  /// Blocks until there are so many of them. @return false when they don't come
  [[nodiscard]] bool await_nanosleeps(long seconds, long nanoseconds, long count) const;

  /// How long each wait with a time limit would have taken at most, in their order.
  std::vector<std::chrono::nanoseconds> timed_waits() const;

  /// Lets a signal interrupt the next `nanosleep`, as the caller sees it.
  void interrupt_next() const;
};

}  // namespace Osv::test
