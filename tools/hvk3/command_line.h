#pragma once

#include <CLI/CLI.hpp>
#include <deque>
#include <string>
#include <vector>

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

  /// Parses a line, the program's name first. What stands behind a word "--" is left alone, if the
  /// command takes a program there.
  /// @throws CLI::ParseError
  void parse(const std::vector<std::string>& words);

  /// The command whose words stood on the line that was parsed, with its options.
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
