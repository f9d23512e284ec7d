#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "hvk3/command_line.h"
#include "hvk3/program_options.h"
#include "hvk3/recording/replay.h"

namespace hvk3 {
namespace {

using Words = std::vector<std::string>;

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

/// The same command line again, where the loader finds the recording's libraries.
int run_on_recording(const Options& options, Words words, Console& console, Report& report) {
  words.front() = std::filesystem::read_symlink("/proc/self/exe").string();
  const ReplayEnd end = replay(options.replay, words, eOutput::Standard, console);
  if (options.json && (end.trouble || end.program.by_signal)) {  // else it has printed its own
    fill_report(report, end);
    report.print();
  }
  return end.program.status;
}

/// What people read is printed at once. The object tells the end, which a replay may still come to
/// while the plug-in goes.
int carry_out(const Command& command, const Options& options, Console& console, Report& report) {
  Context context(options, console, report);
  command.run(context);
  if (!options.json) {
    report.print();
  }
  return context.exit_code();
}

int run(const Command& command, const Options& options, const Words& words) {
  Console console(options.verbose);
  Report report(command.name, options.json);
  try {
    if (!options.replay.empty() && !is_replay_of(options.replay)) {
      return run_on_recording(options, words, console, report);
    }
    const int exit_code = carry_out(command, options, console, report);
    if (options.json) {
      report.print();
    }
    return exit_code;
  } catch (const Failure& failure) {
    return end_with(failure, console, report);
  } catch (const std::exception& error) {
    return end_with(Failure(ExitStatus::Internal, error.what()), console, report);
  }
}

int parse_and_run(const Words& words) {
  CommandLine line;
  try {
    line.parse(words);
  } catch (const CLI::ParseError& error) {
    return end_parsing(line.app(), error);
  }
  const CommandLine::Choice choice = line.choice();
  return run(choice.command, choice.options, words);
}

}  // namespace
}  // namespace hvk3

int main(int argc, char** argv) {
  try {
    return hvk3::parse_and_run({argv, argv + argc});
  } catch (const hvk3::Failure& failure) {  // standard output is lost, standard error may be there
    std::cerr << "hvk3: " << failure.what() << std::endl;
    return failure.exit_code();
  }
}
