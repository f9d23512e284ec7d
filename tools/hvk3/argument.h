#pragma once

#include <CLI/CLI.hpp>
#include <map>
#include <string>

namespace hvk3 {

/// Gives an option's argument a name for the help, and refuses what it can't be. Left alone, a
/// validator writes of types of variables there.
inline CLI::Option* take_only(CLI::Option* option, const std::string& argument,
                              CLI::Validator validator) {
  return option->type_name(argument)->check(validator.description(""));
}

/// The words that an argument can be, for its name: "{off,on}".
template <class Value>
std::string choices_of(const std::map<std::string, Value>& words) {
  return CLI::IsMember(words).get_description();
}

/// An option whose argument is one of some words.
template <class Value>
CLI::Option* add_choice(CLI::App& command, const std::string& name, Value& target,
                        const std::map<std::string, Value>& words, const std::string& description) {
  const auto assign = [words, &target](const std::string& word) { target = words.at(word); };
  return take_only(command.add_option_function<std::string>(name, assign, description),
                   choices_of(words), CLI::IsMember(words));
}

}  // namespace hvk3
