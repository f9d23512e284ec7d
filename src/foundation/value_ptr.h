#pragma once

/// @file
/// An owner of one object.

namespace Osv {

/// Owns one object and deletes it through its virtual destructor.
template <typename T>
class TXValuePtr {
 public:
  TXValuePtr() = default;
  explicit TXValuePtr(T* object) : m_pObject(object) {}
  ~TXValuePtr() { delete m_pObject; }
  TXValuePtr(const TXValuePtr&) = delete;
  TXValuePtr& operator=(const TXValuePtr&) = delete;

  T* operator->() const { return m_pObject; }

 private:
  T* m_pObject = nullptr;
};

}  // namespace Osv
