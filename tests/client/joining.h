#pragma once

/// @file
/// Tells when a thread waits for the end of another: the test program has a `pthread_join` of its
/// own, which the plug-in's code calls in place of the system's. Whoever stops capture has by then
/// asked the worker to end.

namespace Osv::client {

/// The joins since the object was made. One at a time.
class Joining {
 public:
  Joining();

  /// Blocks until a thread is about to join another. @return false when none comes
  [[nodiscard]] bool await() const;
};

}  // namespace Osv::client
