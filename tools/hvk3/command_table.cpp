#include <array>

#include "hvk3/commands.h"

namespace hvk3 {

std::span<const Command* const> all_commands() {
  static constexpr std::array kCommands = {&kListCommand,
                                           &kInfoCommand,
                                           &kDoctorCommand,
                                           &kSnapCommand,
                                           &kCaptureCommand,
                                           &kLivenessCommand,

                                           &kRollCommand,
                                           &kContaminationCommand,
                                           &kLedsCommand,
                                           &kPropertyGetCommand,
                                           &kPropertySetCommand,
                                           &kFeatureListCommand,
                                           &kFeatureGetCommand,
                                           &kFeatureSetCommand,
                                           &kSecretReadCommand,
                                           &kSecretWriteCommand,
                                           &kSecretAuthorizeCommand,
                                           &kRecordCommand,
                                           &kReplayCommand,
                                           &kCompletionBashCommand};
  return kCommands;
}

std::span<const CommandGroup> all_command_groups() {
  static constexpr std::array kGroups = {
      CommandGroup{"property", "Read and set the scanner's properties"},
      CommandGroup{"feature", "List, read and set the scanner's features"},
      CommandGroup{"secret", "Read and write the scanner's protected bytes"},
      CommandGroup{"completion", "Print a script that completes command lines in a shell"}};
  return kGroups;
}

}  // namespace hvk3
