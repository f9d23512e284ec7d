#pragma once

#include <optional>
#include <string>

#include "foundation/exceptions.h"

/// @file
/// A refusal that a target expects, as a value.

namespace Osv::fuzz {

struct Failure {
  int number = 0;
  std::string text;

  bool operator==(const Failure&) const = default;
};

/// What `action` fails with; nothing when it succeeds. Any other exception goes on, and is a
/// finding.
/// @tparam Exception one of the family with a number
template <typename Exception, typename Action>
std::optional<Failure> failure_of(Action action) {
  try {
    action();
  } catch (const Exception& failure) {
    return Failure{failure.GetErrorNumber(), failure.GetDescription()};
  }
  return std::nullopt;
}

}  // namespace Osv::fuzz
