#pragma once

#include "ostrevanhvk3/errors.h"

/// @file
/// The form of a number at the boundary.

namespace Osv::lx {

/// 0 for 0, else the number with the reported bit.
constexpr unsigned long BoundaryResult(unsigned long number) {
  return number == 0 ? 0 : number | error_number::ReportedBit;
}

/// A signed number, widened with its sign.
constexpr unsigned long Widened(int number) {
  return static_cast<unsigned long>(static_cast<long>(number));
}

}  // namespace Osv::lx
