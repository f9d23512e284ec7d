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

/// The command line with all options and the help.
class CommandLine {
 public:
  CommandLine();
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  CLI::App& app() { return m_cApp; }
  const ViewOptions& options() const { return m_cOptions; }

 private:
  CLI::App m_cApp;
  ViewOptions m_cOptions;  // the parser points to it
};

}  // namespace hvk3::view
