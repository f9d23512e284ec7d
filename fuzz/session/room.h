#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "closed_libraries/scene.h"
#include "support/input.h"
#include "support/memory.h"
#include "support/require.h"

/// @file
/// Where a client takes what an operation gives out.

namespace Osv::fuzz {

/// The client's memory for the output of one call, which nobody has written before. Made before the
/// call, and asked behind it.
class Room {
 public:
  explicit Room(std::size_t size)
      : m_before(unwritten_bytes(size)), m_bytes(m_before), m_nUnnamed(scene().unnamed_failures) {}

  std::size_t size() const { return m_bytes.size(); }

  template <typename Value>
  Value* as() {
    return reinterpret_cast<Value*>(m_bytes.data());
  }

  /// Puts bytes at the front, for an operation that reads some of what it is given.
  void give(Bytes bytes) {
    std::copy(bytes.begin(), bytes.end(), m_bytes.begin());
    m_before = m_bytes;
  }

  bool is_untouched(std::size_t from = 0) const {
    return std::equal(m_bytes.begin() + static_cast<std::ptrdiff_t>(from), m_bytes.end(),
                      m_before.begin() + static_cast<std::ptrdiff_t>(from));
  }

  /// What the call gave out: the first `size` bytes if it succeeded. The others, or all, must be as
  /// they were. Nothing is told, and taken, of a call in which the scanner library failed without a
  /// reason: it may have succeeded and given nothing.
  Bytes taken(unsigned long result, std::size_t size) const {
    const bool is_told = scene().unnamed_failures == m_nUnnamed;
    const std::size_t written = result == 0 ? size : 0;
    require(is_untouched(written), "what is not given out is left alone");
    return Bytes(m_bytes).first(is_told ? written : 0);
  }

 private:
  std::vector<unsigned char> m_before;
  std::vector<unsigned char> m_bytes;
  unsigned int m_nUnnamed;
};

}  // namespace Osv::fuzz
