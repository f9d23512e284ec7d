#include "hvk3/commands.h"
#include "hvk3/delivery.h"
#include "hvk3/interruption.h"
#include "hvk3/scanner.h"
#include "hvk3/settings.h"

namespace hvk3 {
namespace {

constexpr char kExamples[] =
    "  hvk3 snap --out platen.png              one image at once\n"
    "  hvk3 snap --set low-contrast=on --show  with a property set first\n"
    "  hvk3 snap --simulate --empty --show     the empty platen of a simulated scanner\n";

void run(Context& context) {
  const Wakeup wakeup;
  const Interruption interruption(wakeup);
  choose_scanner(context.grabber(), context.options().device);
  apply(context.grabber(), context.options().settings);
  const Image image = take_image(context.grabber());
  interruption.check();
  deliver(context, image, 1);
}

void add_options(CLI::App& app, Options& options) {
  add_plugin_options(app, options);
  add_device_option(app, options);
  add_setting_option(app, options);
  add_image_options(app, options);
}

}  // namespace

const Command kSnapCommand = {"snap", "Take one image at once, whatever lies on the platen",
                              kExamples, &add_options, &run};

}  // namespace hvk3
