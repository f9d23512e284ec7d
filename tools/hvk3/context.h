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

/// Loads the simulator if it is wanted, and the plug-in when a command first asks for it; both go
/// in the opposite order.
class Context {
 public:
  /// @throws Failure
  Context(const Options& options, Console& console, Report& report);

  /// Tells what went wrong in a scenario.
  ~Context();
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;

  const Options& options() const { return m_cOptions; }
  Console& console() { return m_cConsole; }
  Report& report() { return m_cReport; }

  /// @throws Failure `PluginUnavailable`
  Plugin& plugin();
  Osv::lx::ClFramegrabber& grabber() { return plugin().grabber(); }

  /// Takes another program's exit status for this one's.
  void end_with(int exit_code) { m_nExitCode = exit_code; }
  int exit_code() const { return m_nExitCode; }

 private:
  const Options& m_cOptions;
  Console& m_cConsole;
  Report& m_cReport;
  std::optional<Simulation> m_cSimulation;
  std::optional<Plugin> m_cPlugin;
  int m_nExitCode = 0;
};

}  // namespace hvk3
