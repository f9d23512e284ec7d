#pragma once

#include <algorithm>
#include <string_view>

/// @file
/// Texts that go out into a caller's buffer.

namespace Osv::simulator {

/// Copies a text with its terminating zero if it fits, and tells the bytes needed either way.
/// @param value may be null, which never fits
/// @param length in: bytes at `value`; out: bytes needed
[[nodiscard]] inline bool give_text(std::string_view text, char* value, unsigned long& length) {
  const bool fits = value != nullptr && length > text.size();
  length = text.size() + 1;
  if (fits) {
    std::copy(text.begin(), text.end(), value);
    value[text.size()] = '\0';
  }
  return fits;
}

}  // namespace Osv::simulator
