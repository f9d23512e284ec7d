#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <unordered_map>

#include "recorder/format/block_file.h"

/// @file
/// How large the frames of a scanner are, which no frame call says.

namespace Osv::recorder {

/// Frame sizes by the number of the handle, as the scanner told them last. A caller made its buffer
/// by the same word, so no more than that is ever touched. Any thread.
class FrameSizes {
 public:
  void set(std::uint32_t handle, std::int32_t width, std::int32_t height) {
    const std::int64_t size = std::int64_t{width} * height;
    const bool usable = width > 0 && height > 0 && size <= std::int64_t{kLargestPiece};
    const std::lock_guard<std::mutex> lock(m_cLock);
    m_cSizes[handle] = usable ? static_cast<std::size_t>(size) : 0;
  }

  /// 0 for an unknown one.
  std::size_t of(std::uint32_t handle) const {
    const std::lock_guard<std::mutex> lock(m_cLock);
    const auto found = m_cSizes.find(handle);
    return found == m_cSizes.end() ? 0 : found->second;
  }

 private:
  mutable std::mutex m_cLock;
  std::unordered_map<std::uint32_t, std::size_t> m_cSizes;
};

}  // namespace Osv::recorder
