#pragma once

#include <initializer_list>
#include <set>
#include <string>

#include "support/input.h"

/// @file
/// What a client saw of a session.

namespace Osv::fuzz {

/// Everything that came out of the plug-in, in its order.
class Transcript {
 public:
  using Numbers = std::initializer_list<long>;

  /// @name Results
  /// Each has to be 0 or a number that its operation documents, in the form in which the boundary
  /// reports it, and is given back.
  /// @{

  /// Of an operation that leaves the scanner alone: its own numbers, and no others.
  unsigned long result(const char* operation, unsigned long result, Numbers documented);

  /// Of one that needs the scanner: also those of an opening and those of the closed libraries.
  unsigned long scanner_result(const char* operation, unsigned long result, Numbers documented);

  /// Of a feature: its own are bare, and so are those of a scanner that isn't there or can't be
  /// opened.
  unsigned long feature_result(const char* operation, unsigned long result, Numbers documented);

  /// Of an operation that the scanner does not have: this, always.
  void refusal(const char* operation, unsigned long result, unsigned long documented);
  /// @}

  /// The text that ended a capture: its end names a number of those that end one.
  void error(const std::string& text);

  /// What was written into the client's memory.
  void output(const void* bytes, std::size_t size);
  void output(Bytes bytes) { output(bytes.data(), bytes.size()); }

  /// A whole image block.
  void image(const unsigned char* block);

  void text(const std::string& text) { m_text += text; }

  bool operator==(const Transcript&) const = default;

 private:
  unsigned long note(const char* operation, unsigned long result, bool is_documented);

  std::string m_text;
};

}  // namespace Osv::fuzz
