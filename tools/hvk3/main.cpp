#include <iostream>

#include "hvk3/command_line.h"

namespace hvk3 {
namespace {

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
  CommandLine line;
  try {
    line.app().parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return line.app().exit(error) == 0 ? 0 : static_cast<int>(ExitStatus::Usage);
  }
  const CommandLine::Choice choice = line.choice();
  return run(choice.command, choice.options);
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
