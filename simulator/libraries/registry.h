#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

#include "bench/census.h"

/// @file
/// The instances behind a stand-in's handles.

namespace Osv::simulator {

/// Owns instances and gives them handles: numbers in the disguise of pointers, counted from 1, so
/// that a wrong handle is found and does no harm. Any thread may call it.
template <class T>
class Registry {
 public:
  explicit Registry(eInstance kind) : m_eKind(kind) {}
  ~Registry() { instance_census().left_behind(m_eKind, m_mInstances.size()); }
  Registry(const Registry&) = delete;
  Registry& operator=(const Registry&) = delete;

  void* create() {
    const std::lock_guard<std::mutex> lock(m_cLock);
    m_mInstances[++m_nLast] = std::make_shared<T>();
    instance_census().created(m_eKind);
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(m_nLast));
  }

  /// The instance of a handle, null for a wrong one.
  std::shared_ptr<T> find(void* handle) const {
    const std::lock_guard<std::mutex> lock(m_cLock);
    const auto found = m_mInstances.find(number_of(handle));
    return found == m_mInstances.end() ? nullptr : found->second;
  }

  bool destroy(void* handle) {
    const std::lock_guard<std::mutex> lock(m_cLock);
    const bool found = m_mInstances.erase(number_of(handle)) != 0;
    if (found) {
      instance_census().destroyed(m_eKind);
    } else if (handle != nullptr) {
      instance_census().released_wrongly();
    }
    return found;
  }

  static unsigned int number_of(void* handle) {
    return static_cast<unsigned int>(reinterpret_cast<std::uintptr_t>(handle));
  }

 private:
  const eInstance m_eKind;
  mutable std::mutex m_cLock;
  std::map<unsigned int, std::shared_ptr<T>> m_mInstances;
  unsigned int m_nLast = 0;
};

}  // namespace Osv::simulator
