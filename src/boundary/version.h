#pragma once

#include <string>

/// @file
/// A version of four numbers.

namespace Osv::lx {

/// Four numbers and their text, joined by points.
class ClVersion {
 public:
  ClVersion() = default;
  ClVersion(int major, int minor, int build, int revision);
  ClVersion(const ClVersion&) = default;
  ClVersion& operator=(const ClVersion&) = default;
  virtual ~ClVersion() = default;

  /// Copies the text. Unlike other texts a null buffer leaves the size alone, and the numbers have
  /// a high pattern of their own: clients tell them by it.
  /// @param size in: capacity in bytes; out: length plus 1
  /// @return 0; 0x20000011 when `size` is not greater than the length; 0x2000003C for a null buffer
  unsigned long Version(char* buffer, unsigned long& size) const;

 private:
  int m_nMajor = 0;
  int m_nMinor = 0;
  int m_nBuild = 0;
  int m_nRevision = 0;
  std::string m_sVersion;
};

}  // namespace Osv::lx
