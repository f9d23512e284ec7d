#include "foundation/multi_string.h"

#include <cstring>
#include <new>

#include "foundation/exceptions.h"

namespace Osv {
namespace {

void no_hook() {}

char* allocate(std::size_t size) {
  char* const array = new (std::nothrow) char[size];
  if (array == nullptr) {
    throw CXMemoryAllocException();
  }
  return array;
}

}  // namespace

ClMultiString::ClMultiString() : m_cBuffer(&no_hook) {}

ClMultiString::ClMultiString(const ClMultiString& other)
    : m_cBuffer(&no_hook), m_pNext(other.m_pNext) {
  const std::size_t size = other.m_cBuffer.size();
  if (size != 0) {
    char* const copy = allocate(size);
    std::memcpy(copy, other.m_cBuffer.get(), size);
    m_cBuffer.replace(copy, size);
  }
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): assigning is required to change nothing
ClMultiString& ClMultiString::operator=(const ClMultiString& /*other*/) { return *this; }

void ClMultiString::Add(const char* text) {
  ResetNext();
  if (text == nullptr || *text == '\0') {
    return;
  }
  const std::size_t length = std::strlen(text);
  const std::size_t kept = Length();
  const std::size_t size = kept + length + 2;
  char* const joined = allocate(size);
  if (kept != 0) {
    std::memcpy(joined, m_cBuffer.get(), kept);
  }
  std::memcpy(joined + kept, text, length);
  joined[size - 2] = '\0';
  joined[size - 1] = '\0';
  m_cBuffer.replace(joined, size);
}

std::size_t ClMultiString::Length() const { return IsEmpty() ? 0 : m_cBuffer.size() - 1; }

void ClMultiString::Empty() {
  m_cBuffer.empty();
  ResetNext();
}

char* ClMultiString::Next() {
  if (IsEmpty()) {
    return m_pNext;
  }
  if (m_pNext == nullptr) {
    m_pNext = m_cBuffer.get();
  } else {
    m_pNext += std::strlen(m_pNext) + 1;
    if (*m_pNext == '\0') {
      m_pNext = nullptr;
    }
  }
  return m_pNext;
}

}  // namespace Osv
