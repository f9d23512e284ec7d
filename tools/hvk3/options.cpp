#include "hvk3/options.h"

#include <CLI/CLI.hpp>
#include <map>

#include "hvk3/argument.h"
#include "hvk3/failure.h"
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

/// What `parse` makes of an argument; its refusal is one of the command line's.
template <class Parse>
auto parsed(const std::string& option, const std::string& word, Parse parse) {
  try {
    return parse(word);
  } catch (const Failure& failure) {
    throw CLI::ValidationError(option, failure.what());
  }
}

/// For the help; a number is taken too.
std::string property_names() {
  std::string names;
  for (const Property& property : known_properties()) {
    names += (names.empty() ? "" : ",") + property.name;
  }
  return "{" + names + "}";
}

CLI::Option* add_words(CLI::App& command, const std::string& name,
                       const std::function<void(const std::vector<std::string>&)>& assign,
                       const std::string& description) {
  return command.add_option_function<std::vector<std::string>>(name, assign, description);
}

void add_led_option(CLI::App& command, const std::string& name, std::optional<bool>& target,
                    const std::string& description) {
  static const std::map<std::string, bool> kWords = {{"on", true}, {"off", false}};
  const auto assign = [&target](const std::string& word) { target = kWords.at(word); };
  take_only(command.add_option_function<std::string>(name, assign, description), choices_of(kWords),
            CLI::IsMember(kWords));
}

void add_scene_options(CLI::App& command, Options& options, CLI::Option* simulate) {
  Scene& scene = options.scene;
  const auto scene_option = [&](CLI::Option* option) {
    return option->needs(simulate)->group("Simulated scene");
  };
  CLI::Option* const finger = take_only(
      scene_option(command.add_option("--finger", scene.finger,
                                      "Picture of the finger: 8-bit gray PNG or BMP, 500 DPI")),
      "FILE", CLI::ExistingFile);
  scene_option(command.add_flag("--empty", scene.empty, "No finger comes"))->excludes(finger);
  take_only(scene_option(
                command.add_option("--scanners", scene.scanners, "Number of scanners, 0 to 128")),
            "N", CLI::Range(0U, kInterfaces))
      ->capture_default_str();
  scene_option(command.add_option_function<std::string>(
                   "--pace", [&scene](const std::string& word) { scene.pace = to_pace(word); },
                   "Frames per second up to 1000, or 'unlimited' (default: 15)"))
      ->type_name("FPS");
  scene_option(command.add_option("--faults", scene.faults, "Fault plan in the simulator's words"))
      ->type_name("WORDS");
  scene_option(command.add_option("--script", scene.script,
                                  "Scenario in the simulator's words, - for words on standard "
                                  "input while it runs"))
      ->type_name("FILE|-");
  scene_option(command.add_option("--simulator", scene.libraries, "Folder of the simulator"))
      ->type_name("DIR");
  scene_option(command.add_option("--log", scene.log_file, "Write the plug-in's log to a file"))
      ->type_name("FILE");
}

/// Options that would have no effect are no good ones.
void refuse_what_gets_lost(const CLI::App& command, const Options& options) {
  if (command.count("--shades") > 0 && !options.show && !options.preview) {
    throw CLI::ValidationError("--shades", "only for an image that is drawn");
  }
  refuse_record_options(command, options.out);
}

}  // namespace

void add_plugin_options(CLI::App& command, Options& options) {
  command.add_option("--plugin", options.plugin, "The plug-in to load")->type_name("PATH");
  command.add_flag("-v,--verbose", options.verbose,
                   "Say what happens; with --simulate also show the plug-in's log");
  command.add_flag("--json", options.json, "Print the result as one JSON object");
  CLI::Option* const simulate =
      command.add_flag("--simulate", options.simulate, "Use simulated scanners");
  command.add_option("--replay", options.replay, "Work on a recording of 'hvk3 record'")
      ->type_name("FILE")
      ->excludes(simulate);
  add_scene_options(command, options, simulate);
}

void add_program_output_option(CLI::App& command, Options& options) {
  command.add_flag("--json", options.json,
                   "Print the result as one JSON object; what the program prints goes to standard "
                   "error");
}

void add_device_option(CLI::App& command, Options& options) {
  take_only(command.add_option("--device", options.device,
                               "Interface number of the scanner, 0 to 127, as 'hvk3 list' shows it "
                               "(default: the first)"),
            "N", CLI::Range(0U, kInterfaces - 1));
}

void add_image_options(CLI::App& command, Options& options) {
  const CLI::Validator image_path(
      [](const std::string& path) {
        return is_image_path(path) ? "" : "the file name must end in .png, .bmp, .pgm or .fir";
      },
      "");
  take_only(command.add_option(
                "--out", options.out,
                "Write the image, by the extension as PNG, BMP, PGM or finger image record (.fir)"),
            "FILE", image_path);
  add_record_options(command, options);
  command.add_flag("--show", options.show, "Draw the image with characters")->excludes("--json");
  add_choice(command, "--shades", options.shades,
             {{"auto", eShades::Auto},
              {"24bit", eShades::TrueColour},
              {"256", eShades::Palette},
              {"plain", eShades::Plain}},
             "How images are drawn (default: auto, by the terminal)");
  command.final_callback([&command, &options] { refuse_what_gets_lost(command, options); });
}

void add_preview_option(CLI::App& command, Options& options) {
  command
      .add_flag("--preview", options.preview,
                "Draw the live image on the terminal while capture runs")
      ->excludes("--json");
}

void add_count_option(CLI::App& command, Options& options, const std::string& description) {
  take_only(command.add_option("--count", options.count, description), "N",
            CLI::Range(1U, kLargestCount))
      ->capture_default_str();
}

void add_settle_option(CLI::App& command, Options& options, const std::string& description) {
  take_only(command.add_option("--settle", options.settle, description), "N",
            CLI::Range(1U, kLargestCount))
      ->capture_default_str();
}

void add_timeout_option(CLI::App& command, Options& options) {
  take_only(command.add_option("--timeout", options.timeout,
                               "Time for the whole capture, 0 for no limit"),
            "SECONDS", CLI::Range(0.0, kLongestTimeout))
      ->capture_default_str();
}

void add_keep_going_option(CLI::App& command, Options& options) {
  command.add_flag("--keep-going", options.keep_going,
                   "When the scanner is unplugged, wait until one is there again and go on");
}

void add_setting_option(CLI::App& command, Options& options) {
  const auto assign = [&options](const std::vector<std::string>& words) {
    for (const std::string& word : words) {
      options.settings.push_back(parsed("--set", word, &parse_setting));
    }
  };
  add_words(command, "--set", assign,
            "Set a property first; may be repeated (names: see 'hvk3 property get --help')")
      ->type_name("NAME=VALUE")
      ->allow_extra_args(false);
}

void add_property_names(CLI::App& command, Options& options) {
  const auto assign = [&options](const std::vector<std::string>& words) {
    for (const std::string& word : words) {
      options.properties.push_back(parsed("NAME", word, &find_property));
    }
  };
  add_words(command, "NAME", assign, "Names or numbers of properties (default: all)")
      ->type_name(property_names());
}

void add_property_value(CLI::App& command, Options& options) {
  command
      .add_option_function<std::string>(
          "NAME",
          [&options](const std::string& word) {
            options.properties = {parsed("NAME", word, &find_property)};
          },
          "Name or number of the property")
      ->type_name(property_names())
      ->required();
  command.add_option("VALUE", options.value, "A number, or on, off, level-1, level-2")
      ->type_name("")
      ->required();
}

void add_feature_name(CLI::App& command, Options& options) {
  command
      .add_option("FEATURE", options.feature, "Number or name, as 'hvk3 feature list' shows them")
      ->type_name("")
      ->required();
}

void add_feature_value(CLI::App& command, Options& options) {
  add_feature_name(command, options);
  command.add_option("VALUE", options.value, "A number")->type_name("")->required();
}

void add_level_option(CLI::App& command, Options& options) {
  take_only(command.add_option("--level", options.level, "Security level, 1 or 2"), "N",
            CLI::Range(1U, 2U))
      ->capture_default_str();
}

void add_led_options(CLI::App& command, Options& options) {
  add_led_option(command, "--red", options.red_led, "Switch the red LED");
  add_led_option(command, "--green", options.green_led, "Switch the green LED");
  take_only(command.add_option("--hold", options.hold, "How long to keep them so, 0 until Ctrl-C"),
            "SECONDS", CLI::Range(0.0, kLongestTimeout))
      ->required();
}

void add_code_option(CLI::App& command, Options& options, const std::string& what) {
  command.add_option("--code", options.code, "File with the " + what + ", - for standard input")
      ->type_name("FILE|-")
      ->required();
  command.add_flag("--hex", options.hex, "The bytes are written as 14 hexadecimal digits");
}

void add_secret_option(CLI::App& command, Options& options) {
  command
      .add_option("--secret", options.secret,
                  "File with the 7 protected bytes, - for standard input (behind the code)")
      ->type_name("FILE|-")
      ->required();
}

void add_secret_output_options(CLI::App& command, Options& options) {
  command.add_option("--out", options.out, "Write the 7 bytes to a file that only you may read")
      ->type_name("FILE");
  command.add_flag("--print", options.print, "Show them as hexadecimal digits");
}

void add_capture_options(CLI::App& command, Options& options) {
  add_choice(command, "--mode", options.mode, {{"live", eMode::Live}, {"plain", eMode::Plain}},
             "live: every frame; plain: settled finger images (default: plain)");
  add_count_option(
      command, options,
      "Number of images; with --out and more than one, -1, -2, ... join the file name");
  add_settle_option(command, options, "Plain mode: keep the darkest of so many finished images");
}

}  // namespace hvk3
