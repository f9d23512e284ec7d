#pragma once

#include <CLI/CLI.hpp>
#include <deque>
#include <string>

#include "hvk3/commands.h"

/// @file
/// The command line that the table of commands describes.

namespace hvk3 {

class CommandLine {
 public:
  CommandLine();
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  CLI::App& app() { return m_cApp; }

  /// The command whose words stood on the line that `app` has parsed, with its options.
  struct Choice {
    const Command& command;
    const Options& options;
  };
  Choice choice() const;

 private:
  struct Entry {
    const Command& command;
    CLI::App* parser;
    Options options;
  };

  CLI::App& parent_of(const std::string& group);
  void add(const Command& command);

  CLI::App m_cApp;
  std::deque<Entry> m_cEntries;  // the parsers point to the options
};

}  // namespace hvk3
