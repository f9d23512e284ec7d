#pragma once

#include <optional>
#include <string>

#include "hvk3/scene.h"
#include "hvk3/terminal_picture.h"

/// @file
/// What the command line says.

namespace CLI {
class App;
}

namespace hvk3 {

enum class eMode { Live, Plain };

struct Options {
  std::string plugin;  ///< empty: the default one
  bool simulate = false;
  Scene scene;
  bool verbose = false;
  bool json = false;
  std::optional<unsigned int> device;  ///< interface of the scanner; none: the first of the list

  std::string out;  ///< image file; empty: none
  bool show = false;
  eShades shades = eShades::Auto;

  eMode mode = eMode::Plain;
  unsigned int count = 1;
  unsigned int settle = 10;
  double timeout = 30.0;  ///< seconds, 0 for none
};

/// @name The options by subject; each command adds those that it uses.
/// @{
void add_plugin_options(CLI::App& command, Options& options);
void add_device_option(CLI::App& command, Options& options);
void add_image_options(CLI::App& command, Options& options);
void add_capture_options(CLI::App& command, Options& options);
/// @}

}  // namespace hvk3
