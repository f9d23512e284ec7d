#pragma once

/// @file
/// The driver's settings.

namespace Osv::lx {

/// Where the driver's configuration file is.
constexpr char kConfigurationFile[] = "/etc/ostrevanhvk3.cfg";

/// What the driver would read from its configuration file, were there a key to read.
class CXSetting {
 public:
  /// Reads a configuration file. A missing file is no failure, any key is accepted, and nothing
  /// changes: the file only has to be one that can be parsed. No file is refused today, since the
  /// parser passes over bad lines.
  /// @throws CXConfigFileParsingException
  void LoadFromFile(const char* path);

  bool m_bFlag = false;        ///< not read
  unsigned long m_nDose = 60;  ///< the dose of every image fetched with a dose
};

}  // namespace Osv::lx
