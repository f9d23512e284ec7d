#pragma once

#include <cstddef>
#include <cstring>
#include <vector>

/// @file
/// Where virtual operations stand in the table that clients built elsewhere call through.

namespace Osv::test {

/// The slot of a virtual operation behind those of the destructor, as the platform's pointers to
/// members encode it.
template <typename Operation>
std::size_t slot_of(Operation operation) {
  constexpr std::size_t kDestructorSlots = 2;  // one for a complete object, one that deletes
  std::size_t words[2] = {};
  static_assert(sizeof(words) == sizeof(operation));
  std::memcpy(words, &operation, sizeof(words));
  return words[0] / sizeof(void*) - kDestructorSlots;
}

inline std::vector<std::size_t> numbers_up_to(std::size_t count) {
  std::vector<std::size_t> numbers(count);
  for (std::size_t i = 0; i < count; ++i) {
    numbers[i] = i;
  }
  return numbers;
}

}  // namespace Osv::test
