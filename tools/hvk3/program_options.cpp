#include "hvk3/program_options.h"

#include <CLI/CLI.hpp>
#include <iostream>

#include "hvk3/exit_status.h"

namespace hvk3 {

void add_program_options(CLI::App& program) {
  program.set_version_flag("--version", program.get_name() + " " HVK3_VERSION,
                           "Print the version of the package and exit");
  program.failure_message([](const CLI::App* app, const CLI::Error& error) {
    return app->get_name() + ": " + CLI::FailureMessage::simple(app, error);
  });
}

int end_parsing(const CLI::App& program, const CLI::ParseError& reason) {
  if (program.exit(reason) != 0) {
    return static_cast<int>(ExitStatus::Usage);
  }
  if (!std::cout.flush()) {
    std::cerr << program.get_name() << ": error: standard output can't be written\n";
    return static_cast<int>(ExitStatus::OutputFailed);
  }
  return static_cast<int>(ExitStatus::Ok);
}

}  // namespace hvk3
