#pragma once

#include <mutex>
#include <optional>
#include <utility>

/// @file
/// What one thread leaves for another.

namespace hvk3::view {

/// Room for one value, of which the newest counts: whoever puts never waits for whoever takes.
template <class Value>
class Mailbox {
 public:
  /// Takes the place of what nobody has taken.
  void put(Value value) {
    std::optional<Value> letter(std::move(value));
    const std::lock_guard<std::mutex> lock(m_cLock);
    m_cLetter.swap(letter);  // the old one goes when the lock is free again
  }

  /// The newest value that was not taken yet.
  std::optional<Value> take() {
    const std::lock_guard<std::mutex> lock(m_cLock);
    return std::exchange(m_cLetter, std::nullopt);
  }

 private:
  std::mutex m_cLock;  // guards everything below
  std::optional<Value> m_cLetter;
};

}  // namespace hvk3::view
