#include "hvk3/argument.h"
#include "hvk3/commands.h"
#include "hvk3/recording/replay.h"

namespace hvk3 {
namespace {

constexpr char kExamples[] =
    "  hvk3 replay fault.rec -- your-application\n"
    "  hvk3 replay fault.rec -- hvk3 capture --out finger.png\n"
    "  hvk3 capture --replay fault.rec --out finger.png   the same\n"
    "A program that does not do what was recorded is ended with status 9.\n";

void run(Context& context) {
  const Options& options = context.options();
  const ReplayEnd end =
      replay(options.recording.file, options.recording.program,
             options.json ? eOutput::Error : eOutput::Standard, context.console());
  Report& report = context.report();
  fill_report(report, end);
  report["recording"] = to_json(end.recording);
  report["played"] = end.played;
  report["left_over"] = end.recording.answered_calls - end.played;
  context.end_with(end.program.status);
}

void add_options(CLI::App& app, Options& options) {
  add_program_output_option(app, options);
  take_only(app.add_option("FILE", options.recording.file, "The recording to play"), "",
            CLI::ExistingFile)
      ->required();
}

}  // namespace

const Command kReplayCommand = {
    "replay",  "Run a program on a recording, in place of the closed libraries",
    kExamples, &add_options,
    &run,      true};

}  // namespace hvk3
