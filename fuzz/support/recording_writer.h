#pragma once

#include <fcntl.h>

#include "recorder/format/block_file.h"
#include "recorder/format/entries.h"
#include "support/scratch_file.h"

/// @file
/// Recordings that targets write.

namespace Osv::fuzz {

/// A file that begins as a recording does.
class RecordingWriter {
 public:
  RecordingWriter()
      : m_cWriter(recorder::Descriptor(open(m_cFile.path().c_str(), O_WRONLY | O_APPEND))) {
    m_cWriter.write_prologue();
  }

  const std::string& path() const { return m_cFile.path(); }

  void block(const recorder::Bytes& content) { m_cWriter.write(content); }

  void header(bool pixels) {
    recorder::Header header;
    header.pixels = pixels;
    recorder::Bytes entry;
    append_header(entry, header);
    block(entry);
  }

 private:
  ScratchFile m_cFile;
  recorder::BlockWriter m_cWriter;
};

}  // namespace Osv::fuzz
