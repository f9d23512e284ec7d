#include <CLI/CLI.hpp>
#include <array>

#include "hvk3/commands.h"

namespace hvk3 {
namespace {

constexpr std::array<const Command*, 4> kCommands = {&kListCommand, &kInfoCommand, &kSnapCommand,
                                                     &kCaptureCommand};

constexpr char kFooter[] =
    "Exit status: 0 success, 1 internal error, 2 usage, 3 no scanner, or unplugged meanwhile,\n"
    "4 operation or capture failed for another reason, 5 timeout, 6 output can't be written,\n"
    "7 plug-in or simulator can't be loaded, 128+N ended by signal N (130 for Ctrl-C).";

std::string message_of(const Failure& failure) {
  const std::string number = failure.number() ? ' ' + std::to_string(*failure.number()) : "";
  return "error" + number + ": " + failure.what();
}

int end_with(const Failure& failure, Console& console, Report& report) {
  console.message(message_of(failure));
  report.fail(failure);
  report.print();
  return failure.exit_code();
}

int run(const Command& command, const Options& options) {
  Console console(options.verbose);
  Report report(command.name, options.json);
  try {
    Context context(options, console, report);
    command.run(context);
  } catch (const Failure& failure) {
    return end_with(failure, console, report);
  } catch (const std::exception& error) {
    return end_with(Failure(ExitStatus::Internal, error.what()), console, report);
  }
  report.print();
  return static_cast<int>(ExitStatus::Ok);
}

int parse_and_run(int argc, const char* const* argv) {
  CLI::App app("Drives HVK3 fingerprint scanners through their frame grabber plug-in.", "hvk3");
  app.require_subcommand(1);
  app.footer(kFooter);
  std::array<Options, kCommands.size()> options;
  std::array<CLI::App*, kCommands.size()> parsers = {};
  for (std::size_t i = 0; i < kCommands.size(); ++i) {
    parsers[i] = app.add_subcommand(kCommands[i]->name, kCommands[i]->description);
    kCommands[i]->add_options(*parsers[i], options[i]);
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : static_cast<int>(ExitStatus::Usage);
  }
  const auto chosen = std::find_if(parsers.begin(), parsers.end(),
                                   [](const CLI::App* parser) { return parser->parsed(); });
  const auto index = static_cast<std::size_t>(chosen - parsers.begin());
  return run(*kCommands[index], options[index]);
}

}  // namespace
}  // namespace hvk3

int main(int argc, char** argv) {
  try {
    return hvk3::parse_and_run(argc, argv);
  } catch (const hvk3::Failure& failure) {  // standard output is lost, standard error may be there
    std::cerr << "hvk3: " << failure.what() << std::endl;
    return failure.exit_code();
  }
}
