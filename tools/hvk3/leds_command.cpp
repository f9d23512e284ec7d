#include "hvk3/commands.h"
#include "hvk3/interruption.h"
#include "hvk3/property.h"
#include "hvk3/scanner.h"

namespace hvk3 {
namespace {

constexpr char kExamples[] =
    "  hvk3 leds --green on --hold 5            the green LED for five seconds\n"
    "  hvk3 leds --red on --green on --hold 0   both until Ctrl-C\n"
    "The scanner switches its LEDs off when the program that uses it ends.\n";

/// Switches one LED if that is wanted, and tells how it stands then.
bool switch_led(Osv::lx::ClFramegrabber& grabber, ePropertyIDs id, std::optional<bool> on) {
  const Property led = find_property(std::to_string(id));
  if (on) {
    set_property(grabber, led, *on ? 1 : 0);
  }
  return read_property(grabber, led) != 0;
}

void hold(const Wakeup& wakeup, const Interruption& interruption, double seconds) {
  const Wakeup::Deadline deadline = deadline_after(seconds);
  do {
    interruption.check();
  } while (wakeup.wait(deadline));
}

const char* word(bool on) { return on ? "on" : "off"; }

void run(Context& context) {
  const Options& options = context.options();
  Report& report = context.report();
  const Wakeup wakeup;
  const Interruption interruption(wakeup);
  choose_scanner(context.grabber(), options.device);
  const bool red = switch_led(context.grabber(), ePropRedLED, options.red_led);
  const bool green = switch_led(context.grabber(), ePropGreenLED, options.green_led);
  report["leds"] = {{"red", red}, {"green", green}};
  report["hold"] = options.hold;
  report.text(std::string("red ") + word(red) + ", green " + word(green) + '\n');
  context.console().detail("holding");
  hold(wakeup, interruption, options.hold);
}

void add_options(CLI::App& app, Options& options) {
  add_plugin_options(app, options);
  add_device_option(app, options);
  add_led_options(app, options);
}

}  // namespace

const Command kLedsCommand = {"leds", "Switch the LEDs of a scanner and hold them so", kExamples,
                              &add_options, &run};

}  // namespace hvk3
