#include <unistd.h>

#include "hvk3/capture_run.h"
#include "hvk3/commands.h"
#include "hvk3/delivery.h"
#include "hvk3/live_screen.h"
#include "hvk3/scanner.h"
#include "hvk3/settings.h"
#include "hvk3/settling.h"

namespace hvk3 {
namespace {

constexpr char kExamples[] =
    "  hvk3 capture --out finger.png --show     wait for a finger, keep its settled image\n"
    "  hvk3 capture --preview                   with the live image on the terminal\n"
    "  hvk3 capture --mode live --count 100     take 100 frames, whatever they show\n"
    "  hvk3 capture --set red-led=on            with the red LED on meanwhile\n"
    "  hvk3 capture --keep-going --timeout 0    also across unpluggings\n"
    "  hvk3 capture --simulate --script - --out finger.png\n"
    "                                           steer a simulated finger in words\n"
    "In plain mode no finger is found while low-contrast is on.\n";

void capture(Context& context, eMode mode) {
  const Options& options = context.options();
  const unsigned int settle = mode == eMode::Live ? 1 : options.settle;
  Settling settling(settle);
  unsigned int delivered = 0;
  const auto take = [&](Image image) {
    if (const std::optional<Image> settled = settling.add(std::move(image))) {
      deliver(context, *settled, ++delivered);
    }
    return delivered == options.count;
  };
  const auto prepare_again = [&] {
    choose_scanner(context.grabber(), options.device);
    apply(context.grabber(), options.settings);
    settling = Settling(settle);  // the finger will lie differently
  };
  run_capture(context, {.mode = mode == eMode::Live ? eCaptureLive : eCapturePlain,
                        .take = take,
                        .prepare_again = prepare_again});
}

/// Messages are held back while a picture stands, but details are wanted when they happen.
void require_place_for_preview(const Options& options) {
  if (!options.preview) {
    return;
  }
  LiveScreen::require_terminal();
  if (options.verbose && ::isatty(STDERR_FILENO) != 0) {
    throw Failure(ExitStatus::Usage,
                  "--verbose would write into the preview; send standard error to a file");
  }
}

void run(Context& context) {
  const Options& options = context.options();
  require_place_for_preview(options);
  choose_scanner(context.grabber(), options.device);
  context.report()["mode"] = options.mode == eMode::Live ? "live" : "plain";
  context.report()["images"] = nlohmann::ordered_json::array();
  apply(context.grabber(), options.settings);
  capture(context, options.mode);
}

void add_options(CLI::App& app, Options& options) {
  add_plugin_options(app, options);
  add_device_option(app, options);
  add_setting_option(app, options);
  add_image_options(app, options);
  add_preview_option(app, options);
  add_capture_options(app, options);
  add_timeout_option(app, options);
  add_keep_going_option(app, options);
}

}  // namespace

const Command kCaptureCommand = {
    "capture", "Capture live frames, or wait for a finger and take its settled image", kExamples,
    &add_options, &run};

}  // namespace hvk3
