#pragma once

#include <vector>

#include "foundation/exceptions.h"
#include "ostrevanhvk3/errors.h"

/// @file
/// Look-up by channel number.

namespace Osv::lx {

/// The element with a number counted from 1.
/// @throws ClLXException 4 for a number out of range
template <typename T>
T& get_item(std::vector<T>& items, unsigned long number) {
  if (number == 0 || number > items.size()) {
    throw ClLXException(error_text::IncorrectChannel, error_number::IncorrectChannel);
  }
  return items[number - 1];
}

}  // namespace Osv::lx
