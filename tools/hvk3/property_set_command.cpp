#include "hvk3/commands.h"
#include "hvk3/scanner.h"
#include "hvk3/settings.h"

namespace hvk3 {
namespace {

constexpr char kExamples[] =
    "  hvk3 property set low-contrast on   try whether the scanner takes a value, and read it "
    "back\n"
    "  hvk3 property set liveness level-2\n"
    "A property lasts only as long as the program that sets it. To work with one, set it where "
    "the\n"
    "work is done:\n"
    "  hvk3 snap --set low-contrast=on --out finger.png\n"
    "  hvk3 leds --red on --hold 5\n"
    "  hvk3 liveness --set threshold=60\n"
    "The threshold reads as 0 while fake finger detection is off, whatever it was set to.\n";

void run(Context& context) {
  const Options& options = context.options();
  Report& report = context.report();
  const Property& property = options.properties.front();
  choose_scanner(context.grabber(), options.device);
  set_property(context.grabber(), property, parse_value(property, options.value));
  const unsigned int value = read_property(context.grabber(), property);
  report["property"] = {{"number", static_cast<unsigned int>(property.id)},
                        {"name", property.name},
                        {"value", value},
                        {"lasts", false}};
  report.text(property.name + '\t' + std::to_string(value) + '\n');
  context.console().message("the setting ends with this command; see --set of capture");
}

void add_options(CLI::App& app, Options& options) {
  add_plugin_options(app, options);
  add_device_option(app, options);
  add_property_value(app, options);
}

}  // namespace

const Command kPropertySetCommand = {"property set", "Set a property of a scanner for a moment",
                                     kExamples, &add_options, &run};

}  // namespace hvk3
