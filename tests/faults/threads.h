#pragma once

#include <cstddef>
#include <filesystem>
#include <iterator>

/// @file
/// The threads of this process.

namespace Osv::faults {

inline std::size_t thread_count() {
  const std::filesystem::directory_iterator tasks("/proc/self/task");
  return static_cast<std::size_t>(std::distance(begin(tasks), end(tasks)));
}

}  // namespace Osv::faults
