#include "hvk3/command_line.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include "hvk3/program_options.h"

namespace hvk3 {
namespace {

constexpr char kFooter[] =
    "Examples:\n"
    "  hvk3 list                              the attached scanners\n"
    "  hvk3 doctor                            why a scanner is not among them\n"
    "  hvk3 capture --out finger.png --show   wait for a finger, keep its settled image\n"
    "  hvk3 capture --simulate --show         the same without a scanner\n"
    "  hvk3 COMMAND --help                    options and examples of a command\n"
    "\n"
    "Exit status: 0 success, 1 internal error, 2 usage, 3 no scanner, or unplugged meanwhile,\n"
    "4 operation or capture failed for another reason, 5 timeout, 6 output can't be written,\n"
    "7 plug-in or simulator can't be loaded, 8 doctor found a defect, 9 a replay diverged from "
    "the\n"
    "recording, 128+N ended by signal N (130 for Ctrl-C).";

/// For a command that takes a program, of which the parser never hears.
class ProgramUsage : public CLI::Formatter {
 public:
  std::string make_usage(const CLI::App* app, std::string name) const override {
    std::string usage = CLI::Formatter::make_usage(app, std::move(name));
    usage.pop_back();  // the end of the line
    return usage + " -- PROGRAM [ARGUMENT...]\n";
  }
};

/// Tells a word that nobody knows before one that is missing.
void parse_arguments(CLI::App& app, const std::vector<const char*>& arguments) {
  try {
    app.parse(static_cast<int>(arguments.size()), arguments.data());
  } catch (const CLI::RequiredError&) {
    std::vector<std::string> unknown = app.remaining(true);
    if (unknown.empty()) {
      throw;
    }
    std::reverse(unknown.begin(), unknown.end());  // the error tells the last one first
    throw CLI::ExtrasError(unknown);
  }
}

}  // namespace

CommandLine::CommandLine()
    : m_cApp("Drives HVK3 fingerprint scanners through their frame grabber plug-in.", "hvk3") {
  add_program_options(m_cApp);
  m_cApp.require_subcommand(1);
  m_cApp.footer(kFooter);
  m_cApp.get_formatter()->label("SUBCOMMAND", "COMMAND");
  for (const Command* const command : all_commands()) {
    add(*command);
  }
}

/// The parser above the commands of a group, which appears with the first of them.
CLI::App& CommandLine::parent_of(const std::string& group) {
  if (group.empty()) {
    return m_cApp;
  }
  const auto is_it = [&](const CLI::App* parser) { return parser->get_name() == group; };
  if (const auto known = m_cApp.get_subcommands(is_it); !known.empty()) {
    return *known.front();
  }
  const auto groups = all_command_groups();
  const auto described = std::find_if(groups.begin(), groups.end(),
                                      [&](const auto& each) { return group == each.name; });
  CLI::App* const parser = m_cApp.add_subcommand(group, described->description);
  parser->footer(std::string("Examples:\n") + described->examples);
  return *parser->require_subcommand(1);
}

void CommandLine::add(const Command& command) {
  const std::string name = command.name;
  const std::size_t blank = name.find(' ');
  const std::string group = blank == std::string::npos ? "" : name.substr(0, blank);
  const std::string own = name.substr(blank + 1);  // npos + 1 is 0
  CLI::App* const parser = parent_of(group).add_subcommand(own, command.description);
  parser->footer(std::string("Examples:\n") + command.examples);
  if (command.takes_program) {
    parser->formatter(std::make_shared<ProgramUsage>());
  }
  Entry& entry = m_cEntries.emplace_back(Entry{command, parser, {}});
  command.add_options(*parser, entry.options);
}

void CommandLine::parse(const std::vector<std::string>& words) {
  const auto entry = std::find_if(m_cEntries.begin(), m_cEntries.end(), [&](const Entry& each) {
    return each.command.takes_program && words.size() > 1 && words[1] == each.command.name;
  });
  auto end = words.end();
  if (entry != m_cEntries.end()) {
    end = std::find(words.begin(), words.end(), "--");
    entry->options.recording.program.assign(end == words.end() ? end : end + 1, words.end());
  }
  std::vector<const char*> arguments;
  for (auto word = words.begin(); word != end; ++word) {
    arguments.push_back(word->c_str());
  }
  const bool lacks_program = entry != m_cEntries.end() && entry->options.recording.program.empty();
  try {
    parse_arguments(m_cApp, arguments);
  } catch (const CLI::ExtrasError&) {
    if (!lacks_program) {
      throw;
    }  // else the program stands among the command's own words
  }
  if (lacks_program) {
    throw CLI::ValidationError(entry->command.name, "the program to run is to stand behind '--'");
  }
}

CommandLine::Choice CommandLine::choice() const {
  const auto chosen = std::find_if(m_cEntries.begin(), m_cEntries.end(),
                                   [](const Entry& entry) { return entry.parser->parsed(); });
  return {chosen->command, chosen->options};
}

}  // namespace hvk3
