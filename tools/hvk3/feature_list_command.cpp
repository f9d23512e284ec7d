#include "hvk3/commands.h"
#include "hvk3/feature.h"

namespace hvk3 {
namespace {

constexpr char kExamples[] =
    "  hvk3 feature list                number, name, type, minimum, maximum, description\n"
    "  hvk3 feature list --json\n"
    "The list is what the interface knows; no scanner is needed. A scanner of this family has the\n"
    "last three only: 53 and 54 (see 'hvk3 secret'), and 55.\n";

using Json = nlohmann::ordered_json;

std::string type_of(const FeatureDescription& feature) {
  constexpr unsigned int kBits = 8;
  return feature.width == 0 ? "" : std::to_string(feature.width * kBits) + "-bit";
}

Json or_null(const std::optional<std::uint64_t>& number) { return number ? Json(*number) : Json(); }

std::string or_hyphen(const std::optional<std::uint64_t>& number) {
  return number ? std::to_string(*number) : "-";
}

void add(Report& report, const FeatureDescription& feature) {
  const std::string type = type_of(feature);
  report["features"].push_back({{"number", feature.number},
                                {"name", feature.name},
                                {"word", feature.word()},
                                {"description", feature.description},
                                {"type", type.empty() ? Json() : Json(type)},
                                {"minimum", or_null(feature.minimum)},
                                {"maximum", or_null(feature.maximum)}});
  report.text(std::to_string(feature.number) + '\t' + feature.word() + '\t' +
              (type.empty() ? "-" : type) + '\t' + or_hyphen(feature.minimum) + '\t' +
              or_hyphen(feature.maximum) + '\t' + feature.name + ": " + feature.description + '\n');
}

void run(Context& context) {
  context.report()["features"] = Json::array();
  for (const FeatureDescription& feature : list_features(context.plugin())) {
    add(context.report(), feature);
  }
}

}  // namespace

const Command kFeatureListCommand = {"feature list", "List the features with their schema",
                                     kExamples, &add_plugin_options, &run};

}  // namespace hvk3
