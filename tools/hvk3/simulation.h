#pragma once

#include <optional>
#include <string>
#include <vector>

#include "hvk3/scene.h"
#include "hvk3/script_feed.h"
#include "hvk3/shared_library.h"

/// @file
/// Simulated scanners in place of attached ones.

namespace hvk3 {

/// Loads the simulator's stand-ins. Later openings of the same file names get these, so the plug-in
/// that is loaded behind them works on simulated scanners and touches no real library.
class Simulation {
 public:
  /// @param console outlives this object
  /// @throws Failure `PluginUnavailable` for stand-ins that can't be loaded, `Usage` for a scene
  ///   that can't be set
  Simulation(const Scene& scene, Console& console);

  /// What went wrong with the scenario's last line that could not be carried out; empty for
  /// nothing.
  std::string trouble() const;

 private:
  Osv::simulator::Bench& bench() const;

  std::vector<SharedLibrary> m_vLibraries;
  std::optional<ScriptFeed> m_cFeed;
};

}  // namespace hvk3
