#include "hvk3/options.h"

#include <CLI/CLI.hpp>
#include <map>

#include "hvk3/image_file.h"

namespace hvk3 {
namespace {

constexpr unsigned int kInterfaces = 128;
constexpr unsigned int kLargestCount = 1000000;
constexpr double kLongestTimeout = 1e6;

unsigned int to_pace(const std::string& word) {
  constexpr unsigned int kLargest = 1000;
  unsigned int pace = 0;
  if (word == "unlimited") {
    return pace;
  }
  if (!CLI::detail::lexical_cast(word, pace) || pace < 1 || pace > kLargest) {
    throw CLI::ValidationError("--pace", "neither 1 to 1000 nor 'unlimited'");
  }
  return pace;
}

/// An option whose argument is one of some words.
template <class Enum>
CLI::Option* add_choice(CLI::App& command, const std::string& name, Enum& target,
                        const std::map<std::string, Enum>& words, const std::string& description) {
  const auto assign = [words, &target](const std::string& word) { target = words.at(word); };
  return command.add_option_function<std::string>(name, assign, description)
      ->type_name("")
      ->check(CLI::IsMember(words));
}

void add_scene_options(CLI::App& command, Options& options, CLI::Option* simulate) {
  Scene& scene = options.scene;
  const auto scene_option = [&](CLI::Option* option) {
    return option->needs(simulate)->group("Simulated scene");
  };
  CLI::Option* const finger =
      scene_option(command.add_option("--finger", scene.finger,
                                      "Picture of the finger: 8-bit gray PNG or BMP, 500 DPI"))
          ->check(CLI::ExistingFile);
  scene_option(command.add_flag("--empty", scene.empty, "No finger comes"))->excludes(finger);
  scene_option(command.add_option("--scanners", scene.scanners, "Number of scanners"))
      ->check(CLI::Range(0U, kInterfaces))
      ->capture_default_str();
  scene_option(command.add_option_function<std::string>(
                   "--pace", [&scene](const std::string& word) { scene.pace = to_pace(word); },
                   "Frames per second up to 1000, or 'unlimited' (default: 15)"))
      ->type_name("FPS");
  scene_option(command.add_option("--faults", scene.faults, "Fault plan in the simulator's words"))
      ->type_name("WORDS");
  scene_option(command.add_option("--simulator", scene.libraries, "Folder of the simulator"))
      ->type_name("DIR");
  scene_option(command.add_option("--log", scene.log_file, "Write the plug-in's log to a file"))
      ->type_name("FILE");
}

}  // namespace

void add_plugin_options(CLI::App& command, Options& options) {
  command.add_option("--plugin", options.plugin, "The plug-in to load")->type_name("PATH");
  command.add_flag("-v,--verbose", options.verbose,
                   "Say what happens; with --simulate also show the plug-in's log");
  command.add_flag("--json", options.json, "Print the result as one JSON object");
  CLI::Option* const simulate =
      command.add_flag("--simulate", options.simulate, "Use simulated scanners");
  add_scene_options(command, options, simulate);
}

void add_device_option(CLI::App& command, Options& options) {
  command
      .add_option("--device", options.device,
                  "Interface number of the scanner, as 'hvk3 list' shows it (default: the first)")
      ->check(CLI::Range(0U, kInterfaces - 1));
}

void add_image_options(CLI::App& command, Options& options) {
  const CLI::Validator image_path(
      [](const std::string& path) {
        return is_image_path(path) ? "" : "the file name must end in .png or .bmp";
      },
      "FILE");
  command.add_option("--out", options.out, "Write the image, as PNG or BMP by its extension")
      ->check(image_path);
  CLI::Option* const show =
      command.add_flag("--show", options.show, "Draw the image with characters")
          ->excludes("--json");
  add_choice(command, "--shades", options.shades,
             {{"auto", eShades::Auto},
              {"24bit", eShades::TrueColour},
              {"256", eShades::Palette},
              {"plain", eShades::Plain}},
             "How --show draws (default: auto, by the terminal)")
      ->needs(show);
}

void add_capture_options(CLI::App& command, Options& options) {
  add_choice(command, "--mode", options.mode, {{"live", eMode::Live}, {"plain", eMode::Plain}},
             "live: every frame; plain: settled finger images (default: plain)");
  command
      .add_option("--count", options.count,
                  "Number of images; with --out and more than one, -1, -2, ... join the file name")
      ->check(CLI::Range(1U, kLargestCount))
      ->capture_default_str();
  command
      .add_option("--settle", options.settle,
                  "Plain mode: keep the darkest of so many finished images")
      ->check(CLI::Range(1U, kLargestCount))
      ->capture_default_str();
  command.add_option("--timeout", options.timeout, "Seconds for the whole capture, 0 for no limit")
      ->check(CLI::Range(0.0, kLongestTimeout))
      ->capture_default_str();
}

}  // namespace hvk3
