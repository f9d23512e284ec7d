#pragma once

#include <cstddef>

#include "foundation/array_smart_pointer.h"

/// @file
/// A list of strings in one buffer.

namespace Osv {

/// Strings one behind the other, each ended by a zero byte and the whole by one more.
class ClMultiString {
 public:
  ClMultiString();

  /// Copies the bytes. The iteration position is taken over as it stands and points into the source
  /// until `ResetNext` or `Add`.
  ClMultiString(const ClMultiString& other);

  /// Does nothing: the list stays as it was, and is to stay so.
  ClMultiString& operator=(const ClMultiString& other);

  /// Appends a string and restarts the iteration; a null or empty text adds nothing.
  /// @throws CXMemoryAllocException
  void Add(const char* text);

  /// Bytes of all strings with their zeros, without the final extra zero; 0 for an empty list.
  std::size_t Length() const;

  bool IsEmpty() const { return m_cBuffer.size() == 0; }

  /// Empties the list; the memory stays until the next `Add`.
  void Empty();

  /// Gives the buffer to the caller, who releases it with array `delete`. The iteration position
  /// stays.
  char* Detach() { return m_cBuffer.detach(); }

  void ResetNext() { m_pNext = nullptr; }

  /// Each string in turn, then null, then from the start again.
  char* Next();

  /// The buffer, null for a list that never held a string.
  const char* Buffer() const { return m_cBuffer.get(); }

 private:
  TXArraySmartPointer<char> m_cBuffer;
  char* m_pNext = nullptr;
};

}  // namespace Osv
