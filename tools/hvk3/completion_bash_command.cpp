#include <CLI/CLI.hpp>

#include "hvk3/command_line.h"
#include "hvk3/completion.h"

namespace hvk3 {
namespace {

constexpr char kExamples[] =
    "  source <(hvk3 completion bash)   for this shell; in ~/.bashrc for all to come\n"
    "  hvk3 completion bash > /etc/bash_completion.d/hvk3\n";

void run(Context& context) {
  const std::string script = bash_completion(CommandLine().app());
  context.report()["script"] = script;
  context.report().text(script);
}

void add_options(CLI::App& app, Options& options) {
  app.add_flag("--json", options.json, "Print the script in a JSON object");
}

}  // namespace

const Command kCompletionBashCommand = {"completion bash", "Print the script for bash", kExamples,
                                        &add_options, &run};

}  // namespace hvk3
