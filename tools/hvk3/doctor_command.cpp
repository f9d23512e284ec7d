#include <algorithm>

#include "driver/setting.h"
#include "hvk3/commands.h"
#include "hvk3/doctor/examination.h"
#include "hvk3/doctor/report.h"
#include "hvk3/scanner.h"

namespace hvk3 {
namespace {

constexpr char kExamples[] =
    "  hvk3 doctor                                        why does my scanner not show up?\n"
    "  hvk3 doctor --json\n"
    "  hvk3 doctor --simulate --faults 'ftrScanGetSerialNumber fails with 5'\n"
    "Looks at the closed libraries, at each device, at the plug-in and its configuration file, "
    "and\n"
    "says what to do. Ends with 0 when all is good, notes included, else with 8. Stop other "
    "programs\n"
    "that use the scanner first.\n";

Finding examine_plugin(Context& context) {
  try {
    Plugin& plugin = context.plugin();
    const std::string version = interface_version(plugin.grabber());
    if (version.empty()) {
      return {eFinding::Bad, "plug-in", plugin.name() + " can't build its frame grabber",
              "Install the plug-in anew."};
    }
    return {eFinding::Good, "plug-in", plugin.name() + ", interface version " + version, ""};
  } catch (const Failure& failure) {
    return {eFinding::Bad, "plug-in", std::string("can't be loaded: ") + failure.what(),
            "Install the plug-in and what it depends on, or name it with --plugin."};
  }
}

void run(Context& context) {
  Findings findings = {examine_plugin(context)};
  const Examination examination = examine_all(Osv::lx::kConfigurationFile);
  const Findings more = judge(examination);
  findings.insert(findings.end(), more.begin(), more.end());
  report_examination(context.report(), examination);
  report_findings(context.report(), findings);
  const auto defects = std::count_if(findings.begin(), findings.end(), [](const Finding& each) {
    return each.kind == eFinding::Bad;
  });
  if (defects != 0) {
    throw Failure(ExitStatus::DefectFound,
                  defects == 1 ? "1 defect found" : std::to_string(defects) + " defects found");
  }
}

}  // namespace

const Command kDoctorCommand = {"doctor", "Find out why a scanner does not show up", kExamples,
                                &add_plugin_options, &run};

}  // namespace hvk3
