#pragma once

#include <cstddef>
#include <cstring>
#include <vector>

#include "support/require.h"

/// @file
/// The memory that a run gets. It is filled with a byte, so that output which nobody
/// wrote shows, and a block is refused when it is larger than any honest one, as on a machine that
/// has no more.

namespace Osv::fuzz {

/// Memory is as told above while it lives.
class WatchedMemory {
 public:
  WatchedMemory();
  ~WatchedMemory();
  WatchedMemory(const WatchedMemory&) = delete;
  WatchedMemory& operator=(const WatchedMemory&) = delete;
};

/// Fills all blocks from now on with this byte.
void fill_new_memory_with(unsigned char byte);

/// That byte, for outputs which are not blocks of their own.
unsigned char filling();

/// A record, or room for bytes, that nobody has written yet.
/// @{
template <typename Record>
Record unwritten() {
  Record record;
  std::memset(&record, filling(), sizeof(record));
  return record;
}

inline std::vector<unsigned char> unwritten_bytes(std::size_t size) {
  return std::vector<unsigned char>(size, filling());
}
/// @}

/// Makes an output twice, over memory of two fillings. Bytes that are not written differ.
/// @param make gives something that compares
template <typename Make>
auto written_whole(Make make) {
  constexpr unsigned char kFirst = 0x00;
  constexpr unsigned char kSecond = 0xA5;
  fill_new_memory_with(kFirst);
  const auto first = make();
  fill_new_memory_with(kSecond);
  auto second = make();
  require(first == second, "an output is written whole, and is the same each time");
  return second;
}

}  // namespace Osv::fuzz
