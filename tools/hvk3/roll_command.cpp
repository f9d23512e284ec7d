#include <algorithm>

#include "hvk3/capture_run.h"
#include "hvk3/commands.h"
#include "hvk3/delivery.h"
#include "hvk3/rolled_print.h"
#include "hvk3/scanner.h"

namespace hvk3 {
namespace {

constexpr char kExamples[] =
    "  hvk3 roll --out rolled.png --show    roll a finger over the platen and lift it\n"
    "This scanner does not offer rolled capture. The command runs the plug-in's own strategy for "
    "it\n"
    "on live frames, in this program: each column of the print is the darkest that was seen. "
    "Begin\n"
    "with an empty platen, roll slowly from one side to the other, then lift the finger.\n";

bool offers_rolled(Osv::lx::ClFramegrabber& grabber) {
  const std::vector<std::string> modes = capture_modes(grabber);
  return std::find(modes.begin(), modes.end(), "rolled") != modes.end();
}

void capture_print(Context& context) {
  RolledPrint print;
  const auto take = [&](const Image& frame) {
    const std::optional<Image> rolled = print.add(frame);
    if (rolled) {
      deliver(context, *rolled, 1);
    }
    return rolled.has_value();
  };
  run_capture(context, {eCaptureLive, take, {}});
}

void run(Context& context) {
  choose_scanner(context.grabber(), context.options().device);
  const bool offered = offers_rolled(context.grabber());
  context.report()["mode"] = "rolled";
  context.report()["offered"] = offered;
  context.report()["images"] = nlohmann::ordered_json::array();
  if (!offered) {
    context.console().message(
        "this scanner does not offer rolled capture; the print is put together from live frames");
  }
  capture_print(context);
}

void add_options(CLI::App& app, Options& options) {
  options.record.impression = eImpression::LiveRolled;
  add_plugin_options(app, options);
  add_device_option(app, options);
  add_image_options(app, options);
  add_timeout_option(app, options);
}

}  // namespace

const Command kRollCommand = {"roll", "Put a rolled print together from live frames", kExamples,
                              &add_options, &run};

}  // namespace hvk3
