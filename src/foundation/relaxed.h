#pragma once

#include <atomic>

/// @file
/// A value that one thread writes and another reads by design, with no order to anything else.

namespace Osv {

/// Reads and writes like a plain `T`; a reader sees the old or the new value, never a torn one.
/// Copying takes the value of the moment.
template <typename T>
class TXRelaxed {
 public:
  TXRelaxed() : m_value(T{}) {}
  TXRelaxed(T value) : m_value(value) {}
  TXRelaxed(const TXRelaxed& other) : m_value(other.get()) {}

  TXRelaxed& operator=(T value) {
    m_value.store(value, std::memory_order_relaxed);
    return *this;
  }
  TXRelaxed& operator=(const TXRelaxed& other) { return *this = other.get(); }

  /// Adds 1 in one step, whatever other threads do.
  TXRelaxed& operator++() {
    m_value.fetch_add(1, std::memory_order_relaxed);
    return *this;
  }

  /// Takes `value` in the place of `expected` and nothing else. @return the value from then on
  T replace(T expected, T value) {
    return m_value.compare_exchange_strong(expected, value, std::memory_order_relaxed) ? value
                                                                                       : expected;
  }

  T get() const { return m_value.load(std::memory_order_relaxed); }
  operator T() const { return get(); }

 private:
  std::atomic<T> m_value;
};

}  // namespace Osv
