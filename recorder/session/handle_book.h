#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <unordered_map>

#include "recorder/format/arguments.h"

/// @file
/// The handles of one library by numbers, which are alike when a recording is played.

namespace Osv::recorder {

/// Numbers are given from 1, in the order in which handles come; null is 0. A played handle is its
/// number in the disguise of a pointer. Any thread.
class HandleBook {
 public:
  /// Gives a new handle the next number, also one of a value that was there before.
  std::uint32_t give(const void* handle) {
    const std::lock_guard<std::mutex> lock(m_cLock);
    return handle == nullptr ? 0 : m_cNumbers[handle] = ++m_nLast;
  }

  /// The handle of a number that is played.
  /// @throws DamagedRecording for one that is open already
  void* take(std::uint32_t number) {
    const std::lock_guard<std::mutex> lock(m_cLock);
    void* const handle = reinterpret_cast<void*>(static_cast<std::uintptr_t>(number));
    if (handle != nullptr && !m_cNumbers.try_emplace(handle, number).second) {
      throw DamagedRecording("the recording opens handle " + std::to_string(number) + " twice");
    }
    return handle;
  }

  std::uint32_t number_of(const void* handle) const {
    const std::lock_guard<std::mutex> lock(m_cLock);
    const auto found = m_cNumbers.find(handle);
    if (handle == nullptr) {
      return 0;
    }
    return found == m_cNumbers.end() ? kUnknownHandle : found->second;
  }

  void forget(const void* handle) {
    const std::lock_guard<std::mutex> lock(m_cLock);
    m_cNumbers.erase(handle);
  }

 private:
  mutable std::mutex m_cLock;
  std::unordered_map<const void*, std::uint32_t> m_cNumbers;
  std::uint32_t m_nLast = 0;
};

}  // namespace Osv::recorder
