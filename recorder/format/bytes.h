#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <span>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

/// @file
/// Numbers and bytes as they stand in a recording: little-endian, with nothing between them.

namespace Osv::recorder {

static_assert(std::endian::native == std::endian::little, "numbers are copied as they are");

using Bytes = std::vector<unsigned char>;
using ByteView = std::span<const unsigned char>;

/// A file that is no recording, or one that is damaged; the text tells where and how.
class DamagedRecording : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

inline void append(Bytes& target, const void* source, std::size_t size) {
  const auto* const begin = static_cast<const unsigned char*>(source);
  target.insert(target.end(), begin, begin + size);
}

template <class Number>
void append_number(Bytes& target, Number number) {
  static_assert(std::is_arithmetic_v<Number>);
  append(target, &number, sizeof(number));
}

/// Takes bytes from the front of others, which outlive it.
class ByteReader {
 public:
  explicit ByteReader(ByteView bytes) : m_cRest(bytes) {}

  /// @throws DamagedRecording when so many bytes are not there
  ByteView take(std::size_t size) {
    if (size > m_cRest.size()) {
      throw DamagedRecording("an entry of the recording is cut short");
    }
    const ByteView taken = m_cRest.first(size);
    m_cRest = m_cRest.subspan(size);
    return taken;
  }

  /// @throws DamagedRecording as `take`
  template <class Number>
  Number number() {
    static_assert(std::is_arithmetic_v<Number>);
    Number number = {};
    std::memcpy(&number, take(sizeof(number)).data(), sizeof(number));
    return number;
  }

  ByteView rest() const { return m_cRest; }

 private:
  ByteView m_cRest;
};

}  // namespace Osv::recorder
