#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "recorder/format/bytes.h"
#include "recorder/functions.h"

/// @file
/// What a recording is made of: one entry a block. The first is the header, then come the calls in
/// the order in which they were answered; a text may say why the recording ended early.

namespace Osv::recorder {

/// What stood before the plug-in, and how it was recorded.
struct Header {
  bool pixels = true;                              ///< whether images are in it
  std::int64_t seconds = 0;                        ///< of the beginning, since 1970
  std::array<bool, kLibraryCount> present = {};    ///< the libraries that there were
  std::array<bool, kFunctionCount> exported = {};  ///< and the functions that they had

  /// What the loader told of a library that was there and could not be loaded.
  std::array<std::string, kLibraryCount> failures = {};
};

/// Whether a call asks for a frame of a capture.
constexpr bool is_frame(eFunction function) {
  return function == eFunction::ftrScanGetImageByVariableDose ||
         function == eFunction::ftrScanGetFrame;
}

/// Whether a call is one to the log, which nobody compares or answers when it is played.
constexpr bool is_line_to_the_log(eFunction function) {
  return library_of(function) == eLibrary::ostrevanlf;
}

/// A call, but for its answer.
struct CallHead {
  eFunction function = {};
  std::uint32_t thread = 0;    ///< from 1, in the order in which they came
  std::uint64_t begin = 0;     ///< nanoseconds since the beginning of the recording
  std::uint64_t duration = 0;  ///< nanoseconds
};

enum class eEntry : std::uint8_t { Header = 1, Call = 2, End = 3 };

/// @name Writing: each appends.
/// @{
void append_header(Bytes& target, const Header& header);
void append_call(Bytes& target, const CallHead& head, const Bytes& arguments);
void append_end(Bytes& target, const std::string& why);
/// @}

/// @name Reading
/// @throws DamagedRecording for what can't be
/// @{
eEntry take_kind(ByteReader& reader);
Header take_header(ByteReader& reader);
CallHead take_call(ByteReader& reader);

/// The arguments, behind the call; what is left is its answer.
ByteView take_arguments(ByteReader& reader);

std::string take_end(ByteReader& reader);
/// @}

/// So many bytes from the front of an entry hold all of a call but its answer.
inline constexpr std::size_t kLongestCallHead = 32 + 4096;

}  // namespace Osv::recorder
