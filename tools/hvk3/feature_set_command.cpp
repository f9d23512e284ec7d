#include <charconv>

#include "hvk3/commands.h"
#include "hvk3/feature.h"
#include "hvk3/scanner.h"
#include "hvk3/secret.h"

namespace hvk3 {
namespace {

constexpr char kExamples[] =
    "  hvk3 feature set image-data-format 2   try whether the scanner takes a value\n"
    "A feature lasts only as long as the program that sets it. The protected bytes have commands "
    "of\n"
    "their own, which keep them off the command line: see 'hvk3 secret --help'.\n";

std::uint32_t to_value(const std::string& word) {
  std::uint32_t value = 0;
  const char* const end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, value);
  if (error != std::errc() || stop != end) {
    throw Failure(ExitStatus::Usage, "'" + word + "' is no number of 32 bits");
  }
  return value;
}

/// The width that the schema tells, or a wider one for a value that it would cut.
unsigned int width_for(const FeatureDescription& feature, std::uint32_t value) {
  constexpr std::uint32_t kLargestByte = 0xFF;
  return value > kLargestByte || feature.width > 1 ? sizeof(value) : 1;
}

void run(Context& context) {
  const Options& options = context.options();
  const FeatureDescription feature = find_feature(context.plugin(), options.feature);
  refuse_secret(feature);
  const std::uint32_t value = to_value(options.value);
  choose_scanner(context.grabber(), options.device);
  set_feature(context.plugin(), feature.number, value, width_for(feature, value));
  const unsigned int now = read_feature(context.plugin(), feature.number);
  context.report()["feature"] = {
      {"number", feature.number}, {"name", feature.name}, {"value", now}, {"lasts", false}};
  context.report().text(feature.word() + '\t' + std::to_string(now) + '\n');
  context.console().message("the setting ends with this command");
}

void add_options(CLI::App& app, Options& options) {
  add_plugin_options(app, options);
  add_device_option(app, options);
  add_feature_value(app, options);
}

}  // namespace

const Command kFeatureSetCommand = {"feature set", "Set a feature of a scanner for a moment",
                                    kExamples, &add_options, &run};

}  // namespace hvk3
