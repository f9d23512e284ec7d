#include <chrono>
#include <cstdlib>
#include <exception>
#include <string>

#include "hvk3/argument.h"
#include "hvk3/commands.h"
#include "hvk3/installation.h"
#include "hvk3/recording/child_program.h"
#include "hvk3/recording/forwarder_folder.h"
#include "hvk3/recording/real_libraries.h"
#include "hvk3/recording/recording_file.h"
#include "hvk3/recording/recording_summary.h"
#include "recorder/session/variables.h"

namespace hvk3 {
namespace {

namespace variable = Osv::recorder::variable;

constexpr char kExamples[] =
    "  hvk3 record fault.rec -- hvk3 capture --out finger.png\n"
    "  hvk3 record fault.rec --real-dir /opt/scanner/lib -- your-application\n"
    "  hvk3 record demo.rec --simulate -- hvk3 snap --simulate\n"
    "  hvk3 replay fault.rec -- your-application\n"
    "The file holds fingerprints, unless --no-pixels is given: keep it as you would keep them.\n";

std::string folder_of_libraries(const RecordingOptions& options) {
  if (!options.simulate) {
    return options.real_folder;
  }
  return options.simulator.empty() ? simulator_folder().string() : options.simulator;
}

std::string listed(const RealLibraries& libraries) {
  std::string list;
  for (const std::string& path : libraries.paths) {
    list += (&path == &libraries.paths.front() ? "" : ":") + path;
  }
  return list;
}

void warn(Console& console, const RecordingOptions& options, const RealLibraries& libraries) {
  for (std::size_t i = 0; i < Osv::recorder::kLibraryCount; ++i) {
    if (const std::string& failure = libraries.header.failures[i]; !failure.empty()) {
      console.message(std::string(Osv::recorder::kLibraryNames[i]) +
                      " is there and can't be loaded: " + failure);
    }
  }
  console.message(
      options.file +
      (options.without_pixels ? " will hold no images, but" : " will hold fingerprints,") +
      " the scanner's memory and serial number; keep it safe");
}

/// Throws nothing about the file: the program has ended, and what it ended with is to be told.
void tell_result(Context& context) {
  auto& object = context.report()["recording"] = nullptr;
  try {
    const RecordingSummary recording = summary_of(context.options().recording.file);
    object = to_json(recording);
    context.console().message(
        recording.calls == 0
            ? "nothing was recorded: no process that is recorded called a closed library"
            : std::to_string(recording.calls) + " calls are in " + recording.path);
  } catch (const std::exception& failure) {
    context.console().message(std::string("the recording can't be read: ") + failure.what());
  }
}

void run(Context& context) {
  const RecordingOptions& options = context.options().recording;
  RealLibraries libraries = find_real_libraries(folder_of_libraries(options));
  libraries.header.pixels = !options.without_pixels;
  libraries.header.seconds = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  const ForwarderFolder forwarders(libraries.header, libraries.others);
  const std::string file = create_recording(options.file, libraries.header);
  warn(context.console(), options, libraries);
  ::setenv(variable::kRecording, file.c_str(), 1);
  ::setenv(variable::kLibraries, listed(libraries).c_str(), 1);
  ::unsetenv(variable::kReplay);
  const ProgramEnd end =
      run_program(options.program, context.options().json ? eOutput::Error : eOutput::Standard);
  context.end_with(end.status);
  context.report().end(end.status, end.by_signal);
  tell_result(context);
}

void add_options(CLI::App& app, Options& all) {
  RecordingOptions& options = all.recording;
  add_program_output_option(app, all);
  app.add_option("FILE", options.file, "The recording to make")->type_name("")->required();
  CLI::Option* const folder = take_only(
      app.add_option("--real-dir", options.real_folder,
                     "Folder of the closed libraries (default: those that the loader finds)"),
      "DIR", CLI::ExistingDirectory);
  CLI::Option* const simulate =
      app.add_flag("--simulate", options.simulate, "Record simulated scanners")->excludes(folder);
  app.add_option("--simulator", options.simulator, "Folder of the simulator")
      ->type_name("DIR")
      ->needs(simulate);
  app.add_flag("--no-pixels", options.without_pixels, "Leave images out");
}

}  // namespace

const Command kRecordCommand = {
    "record",  "Run a program and write down what it has of the closed libraries",
    kExamples, &add_options,
    &run,      true};

}  // namespace hvk3
