#include "hvk3/commands.h"
#include "hvk3/feature.h"
#include "hvk3/scanner.h"
#include "hvk3/secret.h"

namespace hvk3 {
namespace {

constexpr char kExamples[] =
    "  hvk3 feature get 55                  by number\n"
    "  hvk3 feature get image-data-format   or by name\n"
    "The protected bytes have commands of their own: see 'hvk3 secret --help'.\n";

void run(Context& context) {
  const Options& options = context.options();
  const FeatureDescription feature = find_feature(context.plugin(), options.feature);
  refuse_secret(feature);
  choose_scanner(context.grabber(), options.device);
  const unsigned int value = read_feature(context.plugin(), feature.number);
  context.report()["feature"] = {
      {"number", feature.number}, {"name", feature.name}, {"value", value}};
  context.report().text(feature.word() + '\t' + std::to_string(value) + '\n');
}

void add_options(CLI::App& app, Options& options) {
  add_plugin_options(app, options);
  add_device_option(app, options);
  add_feature_name(app, options);
}

}  // namespace

const Command kFeatureGetCommand = {"feature get", "Read a feature of a scanner", kExamples,
                                    &add_options, &run};

}  // namespace hvk3
