#include "hvk3/completion.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>
#include <set>
#include <vector>

namespace hvk3 {
namespace {

using Words = std::vector<std::string>;

constexpr char kBegin[] = R"(() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local path= words= word
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case "$path/$word" in
)";
constexpr char kValues[] = R"(    esac
  done
  case $previous in
)";
constexpr char kWords[] = R"(  esac
  case "$path" in
)";
constexpr char kEnd[] = R"(  esac
  COMPREPLY=($(compgen -W "$words" -- "$current"))
}
)";

std::string join(const Words& words) {
  std::string line;
  for (const std::string& word : words) {
    line += (line.empty() ? "" : " ") + word;
  }
  return line;
}

/// The words that an argument takes, out of "{one,two}" in its type; none for any text.
Words choices(const CLI::Option& option) {
  const std::string type = option.get_type_name();
  const std::size_t begin = type.find('{');
  const std::size_t end = type.find('}');
  if (begin == std::string::npos || end == std::string::npos) {
    return {};
  }
  return CLI::detail::split(type.substr(begin + 1, end - begin - 1), ',');
}

/// The names of an option; none for an argument that stands by its place.
Words names(const CLI::Option& option) {
  Words all;
  for (const std::string& name : option.get_lnames()) {
    all.push_back("--" + name);
  }
  for (const std::string& name : option.get_snames()) {
    all.push_back("-" + name);
  }
  return all;
}

std::vector<const CLI::App*> subcommands(const CLI::App& app) {
  return app.get_subcommands([](const CLI::App*) { return true; });
}

/// The three tables of the script.
struct Tables {
  std::string paths;  ///< the words that lead from a command to one below it

  /// Options by the words that they take, none for any text. An option of one name takes the same
  /// words in every command.
  std::map<std::string, std::set<std::string>> values;

  std::string words;  ///< what may come next
};

void add_value(Tables& tables, const CLI::Option& option) {
  if (option.get_items_expected_max() != 0 && option.nonpositional()) {
    const Words all = names(option);
    tables.values[join(choices(option))].insert(all.begin(), all.end());
  }
}

std::string value_cases(const Tables& tables) {
  std::string cases;
  for (const auto& [words, options] : tables.values) {
    std::string patterns;
    for (const std::string& option : options) {
      patterns += (patterns.empty() ? "" : " | ") + option;
    }
    cases += "    " + patterns + ")\n";
    if (!words.empty()) {
      cases += "      COMPREPLY=($(compgen -W '" + words + "' -- \"$current\"))\n";
    }
    cases += "      return ;;\n";
  }
  return cases;
}

void add(Tables& tables, const std::string& path, const CLI::App& app) {
  Words next;
  for (const CLI::App* const command : subcommands(app)) {
    const std::string below = path + '/' + command->get_name();
    next.push_back(command->get_name());
    tables.paths.append("      '").append(below).append("') path='").append(below).append("' ;;\n");
    add(tables, below, *command);
  }
  for (const CLI::Option* const option : app.get_options()) {
    const Words own = option->nonpositional() ? names(*option) : choices(*option);
    next.insert(next.end(), own.begin(), own.end());
    add_value(tables, *option);
  }
  tables.words += "    '" + path + "') words='" + join(next) + "' ;;\n";
}

}  // namespace

std::string bash_completion(const CLI::App& app) {
  const std::string& program = app.get_name();
  std::string function = '_' + program;
  std::replace(function.begin(), function.end(), '-', '_');
  Tables tables;
  add(tables, "", app);
  return "# Completion of " + program + " for bash, made of its command line.\n" + function +
         kBegin + tables.paths + kValues + value_cases(tables) + kWords + tables.words + kEnd +
         "complete -o default -F " + function + ' ' + program + '\n';
}

}  // namespace hvk3
