#pragma once

#include <functional>

/// @file
/// A frame grabber that can't be built: the test program has an allocation function of its own.

namespace Osv::testing_support {

/// While it lives, the first allocation of a frame grabber's size calls `failure`, which throws.
class FailingConstruction {
 public:
  explicit FailingConstruction(std::function<void()> failure);
  ~FailingConstruction();
  FailingConstruction(const FailingConstruction&) = delete;
  FailingConstruction& operator=(const FailingConstruction&) = delete;
};

}  // namespace Osv::testing_support
