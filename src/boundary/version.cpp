#include "boundary/version.h"

#include <cstring>
#include <locale>
#include <sstream>

#include "ostrevanhvk3/errors.h"

namespace Osv::lx {

ClVersion::ClVersion(int major, int minor, int build, int revision)
    : m_nMajor(major), m_nMinor(minor), m_nBuild(build), m_nRevision(revision) {
  std::ostringstream text;
  text.imbue(std::locale::classic());  // a client's locale may group digits
  text << m_nMajor << '.' << m_nMinor << '.' << m_nBuild << '.' << m_nRevision;
  m_sVersion = text.str();
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
