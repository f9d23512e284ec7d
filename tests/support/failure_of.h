#pragma once

#include <stdexcept>
#include <typeinfo>

/// @file
/// A failure as a value.

namespace Osv::testing_support {

/// The failure of exactly this class, not one derived from it, that `action` throws.
/// @throws std::logic_error when it throws none
template <class Failure, class Action>
Failure failure_of(Action action) {
  try {
    action();
  } catch (const Failure& failure) {
    if (typeid(failure) == typeid(Failure)) {
      return failure;
    }
    throw;
  }
  throw std::logic_error("no failure was thrown");
}

}  // namespace Osv::testing_support
