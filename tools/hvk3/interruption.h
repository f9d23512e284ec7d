#pragma once

#include "hvk3/wakeup.h"

/// @file
/// Ctrl-C and its like, while something must be brought to a clean end.

namespace hvk3 {

/// As long as it lives, the first SIGINT, SIGTERM or SIGHUP only wakes the main thread; a second
/// one ends the process as usual. Signals that were ignored stay so. One object at a time.
class Interruption {
 public:
  /// @param wakeup is notified by a signal; outlives this object
  explicit Interruption(const Wakeup& wakeup);
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  /// @throws Failure `Interrupted` when a signal has come
  void check() const;
};

}  // namespace hvk3
