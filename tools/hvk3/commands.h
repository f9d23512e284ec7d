#pragma once

#include <span>

#include "hvk3/context.h"

/// @file
/// The commands. Each returns when it has filled the report, or throws a `Failure`.

namespace CLI {
class App;
}

namespace hvk3 {

struct Command {
  const char* name;         ///< one word, or its group and one word
  const char* description;  ///< one line
  const char* examples;     ///< lines for its help
  void (*add_options)(CLI::App& app, Options& options);
  void (*run)(Context& context);
  bool takes_program = false;  ///< behind a word of its own, "--"
};

/// Commands whose names begin with the same word.
struct CommandGroup {
  const char* name;
  const char* description;
  const char* examples;  ///< lines for its help
};

extern const Command kListCommand;             ///< the attached scanners
extern const Command kInfoCommand;             ///< one scanner's description
extern const Command kDoctorCommand;           ///< why a scanner does not show up
extern const Command kSnapCommand;             ///< one image, at once
extern const Command kCaptureCommand;          ///< live frames or settled finger images
extern const Command kLivenessCommand;         ///< fake finger detection, frame by frame
extern const Command kRollCommand;             ///< a rolled print
extern const Command kContaminationCommand;    ///< the dirt on the platen
extern const Command kLedsCommand;             ///< the LEDs, for a while
extern const Command kPropertyGetCommand;      ///< reads properties
extern const Command kPropertySetCommand;      ///< sets a property
extern const Command kFeatureListCommand;      ///< the features by their schema
extern const Command kFeatureGetCommand;       ///< reads a feature
extern const Command kFeatureSetCommand;       ///< sets a feature
extern const Command kSecretReadCommand;       ///< reads the protected bytes
extern const Command kSecretWriteCommand;      ///< writes the protected bytes
extern const Command kSecretAuthorizeCommand;  ///< replaces their authorization code
extern const Command kRecordCommand;           ///< writes down what a program has of the libraries
extern const Command kReplayCommand;           ///< runs a program on that
extern const Command kCompletionBashCommand;   ///< completion for bash

/// All commands in the order of the help.
std::span<const Command* const> all_commands();

/// All groups.
std::span<const CommandGroup> all_command_groups();

}  // namespace hvk3
