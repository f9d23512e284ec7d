#include <numeric>

#include "hvk3/commands.h"
#include "hvk3/scanner.h"

namespace hvk3 {
namespace {

constexpr char kExamples[] =
    "  hvk3 info                               the first scanner\n"
    "  hvk3 info --device 3                    the one at interface 3\n"
    "  hvk3 info --simulate --scanners 2 --device 1 --json\n";

std::string join(const std::vector<std::string>& words) {
  return std::accumulate(words.begin(), words.end(), std::string(),
                         [](const std::string& line, const std::string& word) {
                           return line.empty() ? word : line + ", " + word;
                         });
}

void fill_json(Report& report, const ListedScanner& scanner, const ScannerInfo& info) {
  report["scanner"] = {{"interface", scanner.interface},
                       {"name", info.name},
                       {"serial", info.serial},
                       {"versions", info.versions}};
}

void fill_text(Report& report, const ListedScanner& scanner, const ScannerInfo& info) {
  report.text("Interface:      " + std::to_string(scanner.interface) + '\n');
  report.text("Name:           " + info.name + '\n');
  report.text("Serial number:  " + info.serial + '\n');
  report.text("Versions:       " + join(info.versions) + '\n');
}

void run(Context& context) {
  Osv::lx::ClFramegrabber& grabber = context.grabber();
  Report& report = context.report();
  const ListedScanner scanner = choose_scanner(grabber, context.options().device);
  const ScannerInfo info = describe_scanner(grabber);
  const std::string version = interface_version(grabber);
  const std::vector<std::string> modes = capture_modes(grabber);
  fill_json(report, scanner, info);
  report["interface_version"] = version;
  report["modes"] = modes;
  fill_text(report, scanner, info);
  report.text("Plug-in:        " + version + '\n');
  report.text("Capture modes:  " + join(modes) + '\n');
}

void add_options(CLI::App& app, Options& options) {
  add_plugin_options(app, options);
  add_device_option(app, options);
}

}  // namespace

const Command kInfoCommand = {"info", "Describe a scanner", kExamples, &add_options, &run};

}  // namespace hvk3
