#pragma once

#include <memory>
#include <mutex>
#include <utility>

/// @file
/// An owned object that one thread may use while another replaces it.

namespace Osv {

/// Holds a `std::shared_ptr` behind a leaf mutex. A user takes a copy and keeps the object alive
/// for as long as it works with it; the mutex is held over the copy alone, never over a destructor.
template <typename T>
class TXSharedSlot {
 public:
  TXSharedSlot() = default;
  explicit TXSharedSlot(std::shared_ptr<T> object) : m_pObject(std::move(object)) {}

  std::shared_ptr<T> get() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_pObject;
  }

  /// Stores `object`; the one held before goes when its last user lets go of it.
  void reset(std::shared_ptr<T> object = nullptr) {
    {
      const std::lock_guard<std::mutex> lock(m_mutex);
      m_pObject.swap(object);
    }
  }

 private:
  mutable std::mutex m_mutex;
  std::shared_ptr<T> m_pObject;
};

}  // namespace Osv
