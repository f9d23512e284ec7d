#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

/// @file
/// The bytes of one run.

namespace Osv::fuzz {

using Bytes = std::span<const std::uint8_t>;

/// Takes bytes from the front. What is missing counts as 0, so that every input is a whole one.
class Input {
 public:
  explicit Input(Bytes bytes) : m_bytes(bytes) {}

  std::size_t left() const { return m_bytes.size(); }

  /// A little-endian number.
  template <std::integral T>
  T number() {
    T value = 0;
    fill(&value, sizeof(value));
    return value;
  }

  std::uint8_t byte() { return number<std::uint8_t>(); }

  /// A byte, cut to a number below `limit`.
  unsigned int below(unsigned int limit) { return byte() % limit; }

  /// Fills memory; what is missing stays as it is.
  void fill(void* memory, std::size_t size) {
    const Bytes taken = bytes(size);
    std::copy(taken.begin(), taken.end(), static_cast<std::uint8_t*>(memory));
  }

  /// At most so many bytes.
  Bytes bytes(std::size_t most) {
    const Bytes taken = m_bytes.first(std::min(most, m_bytes.size()));
    m_bytes = m_bytes.subspan(taken.size());
    return taken;
  }

  Bytes rest() { return bytes(m_bytes.size()); }

  /// A text of at most so many characters, zeros included.
  std::string text(std::size_t most) {
    const Bytes taken = bytes(most);
    return {taken.begin(), taken.end()};
  }

 private:
  Bytes m_bytes;
};

}  // namespace Osv::fuzz
