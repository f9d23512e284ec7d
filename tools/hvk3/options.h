#pragma once

#include <optional>
#include <string>
#include <vector>

#include "hvk3/finger_image_record.h"
#include "hvk3/scene.h"
#include "hvk3/settings.h"
#include "hvk3/terminal_picture.h"

/// @file
/// What the command line says.

namespace CLI {
class App;
}

namespace hvk3 {

enum class eMode { Live, Plain };

/// What `record` and `replay` are told.
struct RecordingOptions {
  std::string file;
  std::string real_folder;  ///< of the closed libraries; empty: those that the loader finds
  bool simulate = false;    ///< those of the simulator
  std::string simulator;    ///< its folder; empty: the one beside this installation
  bool without_pixels = false;
  std::vector<std::string> program;  ///< with its arguments
};

struct Options {
  std::string plugin;  ///< empty: the default one
  Scene scene;
  std::string replay;  ///< recording in place of the closed libraries; empty: none
  bool simulate = false;
  bool verbose = false;
  bool json = false;
  std::optional<unsigned int> device;  ///< interface of the scanner; none: the first of the list

  std::string out;  ///< image file; empty: none
  bool show = false;
  bool preview = false;
  eShades shades = eShades::Auto;
  RecordDetails record;

  eMode mode = eMode::Plain;
  unsigned int count = 1;
  unsigned int settle = 10;
  double timeout = 30.0;    ///< seconds, 0 for none
  bool keep_going = false;  ///< across unpluggings

  std::vector<Setting> settings;  ///< properties to set first
  unsigned int level = 1;         ///< security level of fake finger detection

  std::vector<Property> properties;  ///< empty: all
  std::string feature;               ///< number or name
  std::string value;                 ///< of the property or feature to set

  double hold = 0.0;  ///< seconds to hold the LEDs, 0 until a signal
  std::optional<bool> red_led;
  std::optional<bool> green_led;

  bool print = false;  ///< show the protected bytes
  bool hex = false;    ///< they and their code are written as hexadecimal digits
  std::string code;    ///< file with the authorization code, - for standard input
  std::string secret;  ///< file with the protected bytes, likewise

  RecordingOptions recording;
};

/// @name The options by subject; each command adds those that it uses.
/// @{
void add_plugin_options(CLI::App& command, Options& options);
void add_program_output_option(CLI::App& command, Options& options);
void add_device_option(CLI::App& command, Options& options);
void add_image_options(CLI::App& command, Options& options);
void add_record_options(CLI::App& command, Options& options);
void add_preview_option(CLI::App& command, Options& options);
void add_capture_options(CLI::App& command, Options& options);
void add_settle_option(CLI::App& command, Options& options, const std::string& description);
void add_count_option(CLI::App& command, Options& options, const std::string& description);
void add_timeout_option(CLI::App& command, Options& options);
void add_keep_going_option(CLI::App& command, Options& options);
void add_setting_option(CLI::App& command, Options& options);
void add_property_names(CLI::App& command, Options& options);
void add_property_value(CLI::App& command, Options& options);
void add_feature_name(CLI::App& command, Options& options);
void add_feature_value(CLI::App& command, Options& options);
void add_level_option(CLI::App& command, Options& options);
void add_led_options(CLI::App& command, Options& options);
void add_code_option(CLI::App& command, Options& options, const std::string& what);
void add_secret_option(CLI::App& command, Options& options);
void add_secret_output_options(CLI::App& command, Options& options);
/// @}

/// Refuses the options of finger image records where none is written.
/// @throws CLI::ValidationError
void refuse_record_options(const CLI::App& command, const std::string& out);

}  // namespace hvk3
