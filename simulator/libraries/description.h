#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

#include "bench/fault.h"
#include "bench/recorded_call.h"

/// @file
/// What the libraries say about their codes.

namespace Osv::simulator {

/// The library's own text for a code, or what the fault plan gives in its place.
inline const char* described(const RecordedCall& call, const char* own) {
  static const auto filler = [] {
    std::array<char, kLongestDescription + 1> text = {};
    std::fill_n(text.begin(), kLongestDescription, 'x');
    return text;
  }();
  const Effects& effects = call.effects();
  if (effects.no_text) {
    return nullptr;
  }
  return effects.size.has_value()
             ? filler.data() + kLongestDescription - static_cast<std::size_t>(*effects.size)
             : own;
}

}  // namespace Osv::simulator
