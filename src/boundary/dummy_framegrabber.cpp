#include "boundary/dummy_framegrabber.h"

#include <cstring>

namespace Osv::lx {

ClDummyFramegrabber::ClDummyFramegrabber(int error, const char* text)
    : m_nError(error), m_szError{} {
  if (text != nullptr) {
    std::memcpy(m_szError.data(), text, strnlen(text, m_szError.size() - 1));
  }
}

unsigned long ClDummyFramegrabber::GetLastError(char* text, unsigned long& size) {
  const std::size_t length = std::strlen(m_szError.data());
  if (length == 0) {
    size = 0;
    return 0;
  }
  const unsigned long given = size;
  size = length;
  if (text == nullptr || given <= length + 1) {
    return BoundaryResult(error_number::BufferTooSmall);
  }
  std::memset(text, 0, given);
  std::memcpy(text, m_szError.data(), length);
  return 0;
}

}  // namespace Osv::lx
