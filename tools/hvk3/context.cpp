#include "hvk3/context.h"

#include "hvk3/failure.h"
#include "hvk3/recording/replay.h"

namespace hvk3 {

Context::Context(const Options& options, Console& console, Report& report)
    : m_cOptions(options), m_cConsole(console), m_cReport(report) {
  if (options.scene.script == "-" && (options.code == "-" || options.secret == "-")) {
    throw Failure(ExitStatus::Usage, "standard input can't be a script and a secret at once");
  }
  if (is_replay()) {
    console.detail("a recording stands in place of the closed libraries");
  } else if (options.simulate) {
    Scene scene = options.scene;
    scene.log_to_stderr = options.verbose;
    m_cSimulation.emplace(scene, console);
  } else {
    console.detail("the plug-in's own log goes where the installed logging facility puts it");
  }
}

Context::~Context() {
  if (m_cSimulation && !m_cSimulation->trouble().empty()) {
    m_cConsole.message("script: " + m_cSimulation->trouble());
  }
}

Plugin& Context::plugin() {
  if (!m_cPlugin) {
    m_cPlugin.emplace(m_cOptions.plugin);
    m_cConsole.detail("loaded " + m_cPlugin->name());
  }
  return *m_cPlugin;
}

}  // namespace hvk3
