#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "recorder/format/entries.h"

/// @file
/// The folder in which a program's loader finds the forwarders.

namespace hvk3 {

/// A private folder, removed at the end with what is in it.
class PrivateFolder {
 public:
  PrivateFolder();
  ~PrivateFolder();
  PrivateFolder(const PrivateFolder&) = delete;
  PrivateFolder& operator=(const PrivateFolder&) = delete;

  const std::filesystem::path& path() const { return m_cPath; }

 private:
  std::filesystem::path m_cPath;
};

bool holds_forwarders(const std::filesystem::path& folder);

/// Forwarders for just the libraries and functions that there are, in front of all other libraries
/// of the programs that this one runs from now on.
class ForwarderFolder {
 public:
  /// @param others files that the loader is to find there too, by name
  /// @throws Failure `PluginUnavailable` when the forwarders are not installed, `Usage` when their
  ///   folder can't be searched by the loader, `OutputFailed`
  explicit ForwarderFolder(const Osv::recorder::Header& header,
                           const std::map<std::string, std::string>& others = {});

 private:
  PrivateFolder m_cFolder;
};

}  // namespace hvk3
