#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "recorder/format/bytes.h"

/// @file
/// The arguments of a call, in a form that is written down, compared and told in words.

namespace Osv::recorder {

/// The number of a handle that nobody gave out.
inline constexpr std::uint32_t kUnknownHandle = 0xFFFFFFFF;

/// Collects the arguments in their order. What a call must not give away is not given to it.
class Arguments {
 public:
  /// Longest encoding of all arguments of a call.
  static constexpr std::size_t kLongest = 4096;

  Arguments& handle(std::uint32_t number);  ///< 0 for null
  Arguments& number(std::int64_t number);
  Arguments& pointer(const void* pointer);  ///< whether there is one
  Arguments& text(const char* text);        ///< null too; a long one by its beginning and its sum

  /// Bytes by their number and their check sum; null too.
  Arguments& data(const void* bytes, std::size_t size);

  /// Bytes by their number alone.
  Arguments& data_of_size(std::size_t size);

  const Bytes& encoded() const { return m_vEncoded; }

 private:
  Bytes m_vEncoded;
};

/// A text of a recording as it may be shown: what can't be printed is a question mark.
std::string printable(ByteView text);

/// As in "handle 1, 4, 4". @throws DamagedRecording for bytes that are no arguments
std::string arguments_in_words(ByteView encoded);

}  // namespace Osv::recorder
