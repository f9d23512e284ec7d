#pragma once

#include <sys/types.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "recorder/format/arguments.h"
#include "recorder/format/block_file.h"
#include "recorder/format/entries.h"
#include "recorder/session/answer.h"

/// @file
/// Writes the calls of this process down.

namespace Osv::recorder {

/// A failure to write ends the recording with a word on standard error, never the process.
/// Any thread.
class Recorder {
 public:
  /// @param path of a recording that has a header and no call yet. When another process has it, or
  ///   had it, nothing is recorded, which is told.
  explicit Recorder(const std::string& path);

  /// Whether images are written down.
  bool pixels() const { return m_bPixels; }

  /// Nanoseconds since the beginning.
  std::uint64_t now() const;

  /// Writes a call that began then and is answered now. One of a fork is not written, which its
  /// first call tells.
  /// @param give_answer goes through the answer
  void write(eFunction function, std::uint32_t thread, std::uint64_t begin,
             const Arguments& arguments, const std::function<void(Answer&)>& give_answer) noexcept;

 private:
  void open(const std::string& path);
  void end(const std::string& why) noexcept;
  void tell_of_fork(pid_t process) noexcept;

  std::mutex m_cLock;
  std::unique_ptr<BlockWriter> m_pFile;  // null when nothing is recorded any more
  Bytes m_vEntry;
  bool m_bPixels = true;
  std::uint64_t m_nBegin = 0;
  const pid_t m_nProcess;  // a fork has the same file, and is not to write to it
  std::atomic<pid_t> m_nToldFork = 0;
};

}  // namespace Osv::recorder
