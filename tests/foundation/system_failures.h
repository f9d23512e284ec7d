#pragma once

/// @file
/// Failures of the system that a test asks for: the test program has its own version of the
/// functions and forwards to the real ones.

namespace Osv::testing_support {

/// What is to fail, until the object goes.
enum class eFailing { Nothing, ArrayNew, MutexAttributes, MutexType, MutexInit, FileClose };

class FailingSystem {
 public:
  /// @param errorNumber what the failing function leaves in `errno`
  /// @param spared calls that succeed before the first one that fails
  explicit FailingSystem(eFailing what, int errorNumber = 0, int spared = 0);
  ~FailingSystem();
  FailingSystem(const FailingSystem&) = delete;
  FailingSystem& operator=(const FailingSystem&) = delete;

  /// Mutex attributes that were set up and not destroyed since this object was made.
  int attributes_alive() const;
};

}  // namespace Osv::testing_support
