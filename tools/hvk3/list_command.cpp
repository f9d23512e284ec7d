#include "hvk3/commands.h"
#include "hvk3/scanner.h"

namespace hvk3 {
namespace {

constexpr char kExamples[] =
    "  hvk3 list                        interface and serial number, a tab between\n"
    "  hvk3 list --json                 for programs\n"
    "  hvk3 list --simulate --scanners 2\n"
    "A scanner that is attached and not listed: see 'hvk3 doctor'.\n";

void run(Context& context) {
  const std::vector<ListedScanner> scanners = list_scanners(context.grabber());
  auto& list = context.report()["scanners"] = nlohmann::ordered_json::array();
  for (const ListedScanner& scanner : scanners) {
    list.push_back({{"interface", scanner.interface}, {"serial", scanner.serial}});
    context.report().text(std::to_string(scanner.interface) + '\t' + scanner.serial + '\n');
  }
  if (scanners.empty()) {
    throw Failure(ExitStatus::NoScanner, "no scanner is attached");
  }
}

}  // namespace

const Command kListCommand = {"list", "List the attached scanners: interface number, serial number",
                              kExamples, &add_plugin_options, &run};

}  // namespace hvk3
