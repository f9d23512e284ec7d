#include <iomanip>
#include <sstream>

#include "hvk3/commands.h"
#include "hvk3/scanner.h"

namespace hvk3 {
namespace {

constexpr char kExamples[] =
    "  hvk3 contamination                    with nothing on the platen\n"
    "  hvk3 contamination --simulate --empty\n"
    "A finger counts as dirt. Wipe the platen when the level has risen well above that of a clean\n"
    "one.\n";

void run(Context& context) {
  choose_scanner(context.grabber(), context.options().device);
  const double level = measure_contamination(context.grabber());
  context.report()["contamination"] = level;
  std::ostringstream line;
  line << "contamination level " << std::fixed << std::setprecision(1) << level << '\n';
  context.report().text(line.str());
}

void add_options(CLI::App& app, Options& options) {
  add_plugin_options(app, options);
  add_device_option(app, options);
}

}  // namespace

const Command kContaminationCommand = {"contamination", "Measure the dirt on the empty platen",
                                       kExamples, &add_options, &run};

}  // namespace hvk3
