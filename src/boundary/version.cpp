#include "boundary/version.h"

#include <cstring>
#include <string>

#include "ostrevanhvk3/errors.h"

namespace Osv::lx {

ClVersion::ClVersion(int major, int minor, int build, int revision)
    : m_nMajor(major), m_nMinor(minor), m_nBuild(build), m_nRevision(revision) {
  // No stream: without memory it would give a shorter text and not say so.
  m_sVersion = std::to_string(m_nMajor) + '.' + std::to_string(m_nMinor) + '.' +
               std::to_string(m_nBuild) + '.' + std::to_string(m_nRevision);
}

unsigned long ClVersion::Version(char* buffer, unsigned long& size) const {
  if (size <= m_sVersion.size()) {
    size = m_sVersion.size() + 1;
    return error_number::VersionTooSmall;
  }
  if (buffer == nullptr) {
    return error_number::VersionNullPointer;
  }
  size = m_sVersion.size() + 1;
  std::memcpy(buffer, m_sVersion.c_str(), size);
  return 0;
}

}  // namespace Osv::lx
