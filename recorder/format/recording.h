#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "recorder/format/block_file.h"
#include "recorder/format/entries.h"

/// @file
/// A recording that is read.

namespace Osv::recorder {

/// Knows all calls of a file. Their arguments and answers, which take much more room than they do
/// in the file, stay in it until they are asked for.
class Recording {
 public:
  struct Call {
    CallHead head;
    std::size_t arguments;  ///< as `hash_of` has them
    std::uint64_t position;
  };

  /// @throws DamagedRecording for what is no recording, or a damaged one. One that ends within a
  ///   block is read up to there.
  explicit Recording(const std::string& path);

  const Header& header() const { return m_cHeader; }
  const std::vector<Call>& calls() const { return m_vCalls; }

  /// Number of frames that captures were given.
  std::size_t frames() const { return m_nFrames; }

  /// Bytes of the file.
  std::uint64_t size() const { return m_cFile.size(); }

  /// Why the recording ended early; empty for a usual end.
  const std::string& end() const { return m_sEnd; }

  /// Whether it ends within a block, as behind a crash of the system.
  bool torn() const { return m_cFile.torn(); }

  /// Reads an answer. @throws DamagedRecording
  void read_answer(const Call& call, Bytes& answer);

  /// A call in words, without its arguments when the file is gone.
  std::string in_words(const Call& call);

 private:
  void take(ByteReader reader, std::uint64_t position);
  ByteReader read(const Call& call);

  BlockReader m_cFile;
  Header m_cHeader;
  std::vector<Call> m_vCalls;
  std::size_t m_nFrames = 0;
  std::string m_sEnd;
  Bytes m_vEntry;
};

/// What arguments are compared by: equal ones have the same, and others never do by chance.
std::size_t hash_of(ByteView arguments);

/// A call in words, as in "ftrScanSetOptions(handle 1, 4, 4)".
std::string in_words(eFunction function, ByteView arguments);

}  // namespace Osv::recorder
