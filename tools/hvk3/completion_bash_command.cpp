#include "hvk3/command_line.h"
#include "hvk3/completion.h"

namespace hvk3 {
namespace {

constexpr char kExamples[] =
    "  source <(hvk3 completion bash)   for this shell; in ~/.bashrc for all to come\n"
    "  hvk3 completion bash > /etc/bash_completion.d/hvk3\n";

void run(Context& context) { context.report().text(bash_completion(CommandLine().app())); }

void add_options(CLI::App& /*app*/, Options& /*options*/) {}

}  // namespace

const Command kCompletionBashCommand = {"completion bash", "For bash", kExamples, &add_options,
                                        &run};

}  // namespace hvk3
