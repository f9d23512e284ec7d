#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "hvk3/options.h"

/// @file
/// What the viewer's command line says.

namespace hvk3::view {

struct ViewOptions {
  Options tool;         ///< what it has in common with the tool
  std::string out;      ///< pattern for the files of saved images
  std::string picture;  ///< file for pictures of the window
  bool events = false;
};

/// Adds all options and the help to the command line.
void add_view_options(CLI::App& app, ViewOptions& options);

}  // namespace hvk3::view
