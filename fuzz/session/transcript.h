#pragma once

#include <initializer_list>
#include <set>
#include <string>

#include "support/input.h"

/// @file
/// What a client saw of a session.

namespace Osv::fuzz {

/// Everything that came out of the plug-in, in its order. Every result is held against what its
/// operation documents.
class Transcript {
 public:
  using Numbers = std::initializer_list<long>;

  /// The result of an operation, which has to be 0, or one of these numbers or a number that a
  /// closed library has told, in the form in which the boundary reports it. @return the result
  unsigned long result(const char* operation, unsigned long result, Numbers documented);

  /// The same for one whose refusals are bare numbers.
  unsigned long bare_result(const char* operation, unsigned long result, Numbers documented);

  /// The text that ended a capture: its end names a number of those.
  void error(const std::string& text, Numbers documented);

  /// What was written into the client's memory.
  void output(const void* bytes, std::size_t size);
  void output(Bytes bytes) { output(bytes.data(), bytes.size()); }

  /// A whole image block.
  void image(const unsigned char* block);

  void text(const std::string& text) { m_text += text; }

  bool operator==(const Transcript&) const = default;

 private:
  std::string m_text;
};

}  // namespace Osv::fuzz
