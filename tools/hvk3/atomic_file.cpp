#include "hvk3/atomic_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

#include "hvk3/failure.h"

namespace hvk3 {
namespace {

/// File systems of a network refuse to rename so; those without links do it.
bool move_to_free_name(const char* from, const char* to) {
  if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) {
    return true;
  }
  return errno == EINVAL && ::link(from, to) == 0 && ::unlink(from) == 0;
}

}  // namespace

AtomicFile::AtomicFile(const std::string& path) : m_sPath(path), m_sTemporary(path + ".XXXXXX") {
  const int file = ::mkostemp(m_sTemporary.data(), O_CLOEXEC);  // creates it with mode 0600
  if (file < 0) {
    m_sTemporary.clear();
    fail();
  }
  m_pStream.reset(::fdopen(file, "wb"));
  if (m_pStream == nullptr) {
    ::close(file);
    ::unlink(m_sTemporary.c_str());
    fail();
  }
}

AtomicFile::~AtomicFile() {
  if (!m_sTemporary.empty()) {
    ::unlink(m_sTemporary.c_str());
  }
}

void AtomicFile::commit() {
  flush();
  if (std::rename(m_sTemporary.c_str(), m_sPath.c_str()) != 0) {
    fail();
  }
  m_sTemporary.clear();
}

bool AtomicFile::commit_new() {
  flush();
  if (!move_to_free_name(m_sTemporary.c_str(), m_sPath.c_str())) {
    if (errno == EEXIST) {
      return false;
    }
    fail();
  }
  m_sTemporary.clear();
  return true;
}

void AtomicFile::flush() {
  if (std::fflush(stream()) != 0 || ::fsync(::fileno(stream())) != 0) {
    fail();
  }
}

void AtomicFile::fail() const {
  throw Failure(ExitStatus::OutputFailed, m_sPath + ": " + std::generic_category().message(errno));
}

}  // namespace hvk3
