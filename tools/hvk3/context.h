#pragma once

#include <optional>

#include "hvk3/console.h"
#include "hvk3/options.h"
#include "hvk3/plugin.h"
#include "hvk3/report.h"
#include "hvk3/simulation.h"

/// @file
/// What a command works with.

namespace hvk3 {

/// Loads the simulator if it is wanted, then the plug-in; both go in the opposite order.
class Context {
 public:
  Context(const Options& options, Console& console, Report& report);

  const Options& options() const { return m_cOptions; }
  Console& console() { return m_cConsole; }
  Report& report() { return m_cReport; }
  Osv::lx::ClFramegrabber& grabber() { return m_cPlugin->grabber(); }

 private:
  const Options& m_cOptions;
  Console& m_cConsole;
  Report& m_cReport;
  std::optional<Simulation> m_cSimulation;
  std::optional<Plugin> m_cPlugin;
};

}  // namespace hvk3
