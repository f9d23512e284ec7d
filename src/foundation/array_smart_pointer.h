#pragma once

#include <boost/function.hpp>
#include <cstddef>
#include <utility>

/// @file
/// An owning array with a hook that runs before it goes.

namespace Osv {

/// Owns an array made with array `new`. Size and capacity count elements.
template <typename T>
class TXArraySmartPointer {
 public:
  TXArraySmartPointer() = default;
  explicit TXArraySmartPointer(boost::function<void()> hook) : m_hook(std::move(hook)) {}
  TXArraySmartPointer(const TXArraySmartPointer&) = delete;
  TXArraySmartPointer& operator=(const TXArraySmartPointer&) = delete;

  ~TXArraySmartPointer() {
    if (m_pArray != nullptr) {
      if (m_hook) {
        m_hook();
      }
      delete[] m_pArray;
    }
  }

  T* get() const { return m_pArray; }
  std::size_t size() const { return m_nSize; }
  std::size_t capacity() const { return m_nCapacity; }

  /// Takes `array` of `size` elements and releases the one held before, without the hook.
  void replace(T* array, std::size_t size) {
    delete[] m_pArray;
    m_pArray = array;
    m_nSize = size;
    m_nCapacity = size;
  }

  /// Forgets the elements but keeps the memory.
  void empty() { m_nSize = 0; }

  /// Gives the array to the caller, who releases it with array `delete`.
  T* detach() {
    m_nSize = 0;
    m_nCapacity = 0;
    return std::exchange(m_pArray, nullptr);
  }

 private:
  boost::function<void()> m_hook;
  T* m_pArray = nullptr;
  std::size_t m_nSize = 0;
  std::size_t m_nCapacity = 0;
};

}  // namespace Osv
