#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <unordered_map>
#include <utility>

#include "recorder/format/arguments.h"
#include "recorder/format/block_file.h"
#include "recorder/session/answer.h"

/// @file
/// How large the frames of a scanner are, which no frame call says.

namespace Osv::recorder {

/// Frame sizes by the number of the handle, as the scanner told them. A caller may keep the buffer
/// that it made by the first word on an opening, so no opening has a second size: no more than that
/// buffer is ever touched. Any thread.
class FrameSizes {
 public:
  /// @throws RecordingEnds for another size than before, or one of more than `kLargestPiece`
  void set(std::uint32_t handle, std::int32_t width, std::int32_t height) {
    if (handle == 0 || handle == kUnknownHandle) {
      return;  // no opening, and so no frame
    }
    const bool usable = width > 0 && height > 0;
    if (usable && std::int64_t{width} * height > std::int64_t{kLargestPiece}) {
      throw RecordingEnds("the scanner's frames are too large for it");
    }
    const std::lock_guard<std::mutex> lock(m_cLock);
    const auto [told, is_first] = m_cSizes.try_emplace(handle, width, height);
    if (!is_first && told->second != Size(width, height)) {
      throw RecordingEnds("the scanner tells another size of its frames than before");
    }
  }

  /// 0 for an unknown one, or one that no frame has.
  std::size_t of(std::uint32_t handle) const {
    const std::lock_guard<std::mutex> lock(m_cLock);
    const auto found = m_cSizes.find(handle);
    if (found == m_cSizes.end() || found->second.first <= 0 || found->second.second <= 0) {
      return 0;
    }
    return static_cast<std::size_t>(std::int64_t{found->second.first} * found->second.second);
  }

 private:
  using Size = std::pair<std::int32_t, std::int32_t>;  // width, height

  mutable std::mutex m_cLock;
  std::unordered_map<std::uint32_t, Size> m_cSizes;
};

}  // namespace Osv::recorder
