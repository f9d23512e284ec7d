#pragma once

#include <string>

/// @file
/// The test program's own opening of files: the plug-in's configuration file is never read or
/// written where it belongs. A program that links this finds no such file until a test gives one.

namespace Osv::test {

/// Stands in the place of the configuration file while it lives. One at a time.
class ConfigurationFile {
 public:
  explicit ConfigurationFile(const std::string& content);
  ~ConfigurationFile();
  ConfigurationFile(const ConfigurationFile&) = delete;
  ConfigurationFile& operator=(const ConfigurationFile&) = delete;

  /// The file that is read in place of the configuration file.
  const std::string& path() const { return m_path; }

 private:
  std::string m_path;
};

/// How often the program has tried to open the configuration file.
unsigned int configuration_file_openings();

}  // namespace Osv::test
