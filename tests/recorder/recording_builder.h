#pragma once

#include <fcntl.h>

#include <fstream>
#include <string>

#include "recorder/format/arguments.h"
#include "recorder/format/block_file.h"
#include "recorder/format/entries.h"
#include "support/temporary_folder.h"

/// @file
/// Recordings that tests write.

namespace Osv::recorder::test {

/// A file with a header; calls join in the order in which they were answered.
class RecordingBuilder {
 public:
  explicit RecordingBuilder(const Header& header = {})
      : m_cWriter(Descriptor(::open(path().c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600))) {
    m_cWriter.write_prologue();
    Bytes entry;
    append_header(entry, header);
    m_cWriter.write(entry);
  }

  std::string path() const { return m_cFolder.file("recording"); }

  RecordingBuilder& call(std::uint32_t thread, eFunction function, const Arguments& arguments = {},
                         const Bytes& answer = {}) {
    Bytes entry;
    append_call(entry, {function, thread, 0, 0}, arguments.encoded());
    append(entry, answer.data(), answer.size());
    return block(entry);
  }

  /// A call with a status for an answer.
  RecordingBuilder& status_call(std::uint32_t thread, eFunction function,
                                const Arguments& arguments, int status) {
    Bytes answer;
    append_number(answer, status);
    return call(thread, function, arguments, answer);
  }

  RecordingBuilder& end(const std::string& why) {
    Bytes entry;
    append_end(entry, why);
    return block(entry);
  }

  RecordingBuilder& block(const Bytes& content) {
    m_cWriter.write(content);
    return *this;
  }

 private:
  hvk3::test::TemporaryFolder m_cFolder;
  BlockWriter m_cWriter;
};

}  // namespace Osv::recorder::test
