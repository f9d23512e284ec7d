#pragma once

#include "ostrevanhvk3/module_exception.h"

/// @file
/// The bare number of a `CLX3ModuleException` as a value.

namespace Osv::testing_support {

/// The number that `action` throws, 0 when it throws none.
template <typename Action>
unsigned int module_number(Action action) {
  try {
    action();
  } catch (const lx::CLX3ModuleException& failure) {
    return failure.value();
  }
  return 0;
}

}  // namespace Osv::testing_support
