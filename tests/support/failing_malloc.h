#pragma once

/// @file
/// A `malloc` that runs out of memory when a test wants it to.
///
/// The executable is linked with `--wrap=malloc`, so that the calls of the code under test pass
/// through here; those of libraries don't.

namespace Osv::testing_support {

/// While it lives, `malloc` gives null from a call on.
class FailingMalloc {
 public:
  /// @param call the first one that fails, counted from 1
  explicit FailingMalloc(int call = 1);
  ~FailingMalloc();
  FailingMalloc(const FailingMalloc&) = delete;
  FailingMalloc& operator=(const FailingMalloc&) = delete;
};

}  // namespace Osv::testing_support
