#include "boundary/string_copy.h"

#include <cstring>

#include "ostrevanhvk3/errors.h"

unsigned long StringCpy(const char* text, char* buffer, unsigned long& size) {
  const unsigned long needed = std::strlen(text) + 1;
  const bool fits = needed <= size;
  size = needed;
  if (!fits) {
    return Osv::lx::error_number::BufferTooSmall;
  }
  if (buffer == nullptr) {
    return Osv::lx::error_number::NullPointer;
  }
  std::memcpy(buffer, text, needed);
  return 0;
}
