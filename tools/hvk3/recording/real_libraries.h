#pragma once

#include <array>
#include <map>
#include <string>

#include "recorder/format/entries.h"

/// @file
/// The closed libraries that a recording forwards to.

namespace hvk3 {

/// Where they are and what they have.
struct RealLibraries {
  std::array<std::string, Osv::recorder::kLibraryCount> paths;  ///< absolute; empty for none
  Osv::recorder::Header header;

  /// Files of the folder, by name, that the loader has to find too: those that can't be loaded, and
  /// those that the libraries need.
  std::map<std::string, std::string> others;
};

/// Those of a folder; with an empty one those that the loader finds.
/// @throws Failure `PluginUnavailable` when there is none at all, `Usage` for a path with a colon
///   and for forwarders, as the loader finds within a recording
RealLibraries find_real_libraries(const std::string& folder);

/// Whether the loader finds a library of this name.
bool loader_finds(const std::string& name);

}  // namespace hvk3
