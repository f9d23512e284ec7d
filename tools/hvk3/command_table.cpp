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
      CommandGroup{"property", "Read and set the scanner's properties",
                   "  hvk3 property get                   all properties: name, value, meaning\n"
                   "  hvk3 property set low-contrast on   try whether the scanner takes a value\n"},
      CommandGroup{"feature", "List, read and set the scanner's features",
                   "  hvk3 feature list     what the interface knows\n"
                   "  hvk3 feature get 55   the one of this number\n"},
      CommandGroup{"secret", "Read and write the scanner's protected bytes",
                   "  hvk3 secret read --code code.bin   tells whether the code fits\n"
                   "  hvk3 secret write --code code.bin --secret secret.bin\n"},
      CommandGroup{"completion", "Print a script that completes command lines in a shell",
                   "  source <(hvk3 completion bash)   for this shell\n"}};
  return kGroups;
}

}  // namespace hvk3
