#include "hvk3/man_page.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <regex>
#include <set>
#include <sstream>

namespace hvk3 {
namespace {

/// Text that roff takes as it is.
std::string plain(const std::string& text) {
  std::string escaped;
  for (const char sign : text) {
    if (sign == '\\') {
      escaped += "\\e";
    } else if (sign == '-') {
      escaped += "\\-";
    } else {
      escaped += sign;
    }
  }
  const bool is_request = !escaped.empty() && (escaped.front() == '.' || escaped.front() == '\'');
  return (is_request ? "\\&" : "") + escaped;
}

std::string bold(const std::string& text) { return "\\fB" + plain(text) + "\\fR"; }
std::string italic(const std::string& text) { return "\\fI" + plain(text) + "\\fR"; }

std::string upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
  return text;
}

/// As it is called: "hvk3 property get", or "hvk3-view".
std::string words_of(const CLI::App& command) {
  const CLI::App* const group = command.get_parent();
  return (group != nullptr ? words_of(*group) + ' ' : "") + command.get_name();
}

std::vector<const CLI::App*> commands_below(const CLI::App& command) {
  return command.get_subcommands([](const CLI::App*) { return true; });
}

std::string argument_of(const CLI::Option& option) {
  return option.get_items_expected_max() == 0 ? "" : option.get_type_name();
}

/// Words in a row may go on in the next line behind each comma.
std::string breakable(const std::string& list) {
  std::string text;
  for (const char sign : list) {
    text += sign;
    text += sign == ',' ? "\\:" : "";
  }
  return text;
}

std::string heading(const CLI::Option& option) {
  std::string names;
  for (const std::string& name : CLI::detail::split(option.get_name(false, true), ',')) {
    names += (names.empty() ? "" : ", ") + bold(name);
  }
  const std::string argument = argument_of(option);
  return argument.empty() ? names : names + ' ' + breakable(italic(argument));
}

std::string names_of(const std::set<CLI::Option*>& options) {
  std::set<std::string> names;
  for (const CLI::Option* const option : options) {
    names.insert(option->get_name());
  }
  std::string text;
  for (const std::string& name : names) {
    text += (text.empty() ? "" : ", ") + bold(name);
  }
  return text;
}

void add_option(std::ostream& page, const CLI::Option& option) {
  page << ".TP\n" << heading(option) << '\n' << plain(option.get_description()) << '\n';
  if (!option.get_default_str().empty()) {
    page << "(default: " << plain(option.get_default_str()) << ")\n";
  }
  if (!option.get_needs().empty()) {
    page << ".br\nOnly with " << names_of(option.get_needs()) << ".\n";
  }
  if (!option.get_excludes().empty()) {
    page << ".br\nNot with " << names_of(option.get_excludes()) << ".\n";
  }
}

void add_options(std::ostream& page, const CLI::App& command) {
  for (const std::string& group : command.get_groups()) {
    page << (group == "Options" ? ".SH OPTIONS\n" : ".SS " + plain(group) + '\n');
    for (const CLI::Option* const option : command.get_options()) {
      if (option->get_group() == group) {
        add_option(page, *option);
      }
    }
  }
}

/// What the help has behind the command's words, with the names of arguments in italics.
std::string usage_of(const CLI::App& command) {
  const std::string help = command.help();
  const std::size_t begin = help.find(" [OPTIONS]", help.find("\nUsage: "));
  const std::string usage = plain(help.substr(begin, help.find('\n', begin) - begin));
  return std::regex_replace(usage, std::regex("[A-Z]+"), "\\fI$&\\fR");
}

void add_synopsis(std::ostream& page, const CLI::App& command) {
  page << ".SH SYNOPSIS\n" << bold(words_of(command)) << usage_of(command) << '\n';
}

void add_commands(std::ostream& page, const CLI::App& command, const std::string& title) {
  const std::vector<const CLI::App*> below = commands_below(command);
  page << (below.empty() ? "" : ".SH COMMANDS\n");
  for (const CLI::App* const each : below) {
    page << ".TP\n"
         << bold(title + '-' + each->get_name()) << "(1)\n"
         << plain(each->get_description()) << '\n';
  }
}

/// One word and a colon, such as "Examples:".
bool is_heading(const std::string& line) {
  return line.ends_with(':') && line.find(' ') == std::string::npos;
}

/// The end of the help: indented lines stand as they are, others are prose.
void add_footer(std::ostream& page, const CLI::App& command) {
  const std::string exit_status = "Exit status: ";
  std::istringstream footer(command.get_footer());
  bool in_example = false;
  for (std::string line; std::getline(footer, line);) {
    const bool is_example = line.starts_with("  ");
    if (is_example != in_example) {
      page << (is_example ? ".EX\n" : ".EE\n");
      in_example = is_example;
    }
    if (is_heading(line)) {
      page << ".SH " << plain(upper(line.substr(0, line.size() - 1))) << '\n';
    } else if (line.starts_with(exit_status)) {
      page << ".SH EXIT STATUS\n" << plain(line.substr(exit_status.size())) << '\n';
    } else if (!line.empty()) {
      page << plain(line) << '\n';
    }
  }
  page << (in_example ? ".EE\n" : "");
}

}  // namespace

std::string man_page(const CLI::App& command, const std::string& title, const ManEdition& edition) {
  std::ostringstream page;
  page << ".TH " << plain(upper(title)) << " 1 " << edition.date << " \"hvk3 " << edition.version
       << "\" \"User Commands\"\n.ad l\n.nh\n.SH NAME\n"
       << plain(title) << " \\- " << plain(command.get_description()) << '\n';
  add_synopsis(page, command);
  add_commands(page, command, title);
  add_options(page, command);
  add_footer(page, command);
  if (title != "hvk3") {
    page << ".SH SEE ALSO\n" << bold("hvk3") << "(1)\n";
  }
  return page.str();
}

}  // namespace hvk3
