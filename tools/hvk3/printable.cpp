#include "hvk3/printable.h"

#include <cstring>

namespace hvk3 {

std::string printable(const char* bytes, std::size_t size) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (const char* end = bytes + ::strnlen(bytes, size); bytes != end; ++bytes) {
    const auto byte = static_cast<unsigned char>(*bytes);
    if (byte >= ' ' && byte <= '~' && byte != '\\') {
      text += *bytes;
    } else {
      text.append("\\x").append(1, kDigits[byte >> 4]).append(1, kDigits[byte & 0xF]);
    }
  }
  return text;
}

}  // namespace hvk3
