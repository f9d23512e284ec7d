#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "support/input.h"
#include "support/require.h"

/// @file
/// A file for code that takes a path.

namespace Osv::fuzz {

/// A file in memory that goes with the object.
class ScratchFile {
 public:
  explicit ScratchFile(Bytes content = {})
      : m_nFile(memfd_create("fuzz", MFD_CLOEXEC)),
        m_sPath("/proc/self/fd/" + std::to_string(m_nFile)) {
    const ssize_t written = write(m_nFile, content.data(), content.size());
    require(written == static_cast<ssize_t>(content.size()), "a scratch file can be written");
  }
  ~ScratchFile() { close(m_nFile); }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  const std::string& path() const { return m_sPath; }

 private:
  int m_nFile;
  std::string m_sPath;
};

}  // namespace Osv::fuzz
