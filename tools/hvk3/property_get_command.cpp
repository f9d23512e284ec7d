#include "hvk3/commands.h"
#include "hvk3/property.h"
#include "hvk3/scanner.h"

namespace hvk3 {
namespace {

constexpr char kExamples[] =
    "  hvk3 property get               all properties: name, value, meaning\n"
    "  hvk3 property get threshold 7   some of them, by name or number\n"
    "A switch that is on reads as 100. Every command starts with the scanner as it is plugged in:\n"
    "see 'hvk3 property set --help'.\n";

void report(Report& report, const Property& property, unsigned int value) {
  const std::string meaning = meaning_of(property, value);
  report["properties"].push_back(
      {{"number", static_cast<unsigned int>(property.id)},
       {"name", property.name},
       {"value", value},
       {"meaning", meaning.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(meaning)},
       {"writable", property.writable}});
  report.text(property.name + '\t' + std::to_string(value) +
              (meaning.empty() ? "" : '\t' + meaning) + '\n');
}

void run(Context& context) {
  const Options& options = context.options();
  choose_scanner(context.grabber(), options.device);
  context.report()["properties"] = nlohmann::ordered_json::array();
  for (const Property& property :
       options.properties.empty() ? known_properties() : options.properties) {
    report(context.report(), property, read_property(context.grabber(), property));
  }
}

void add_options(CLI::App& app, Options& options) {
  add_plugin_options(app, options);
  add_device_option(app, options);
  add_property_names(app, options);
}

}  // namespace

const Command kPropertyGetCommand = {"property get", "Read properties of a scanner", kExamples,
                                     &add_options, &run};

}  // namespace hvk3
