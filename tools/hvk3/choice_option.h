#pragma once

#include <CLI/CLI.hpp>
#include <map>
#include <string>

namespace hvk3 {

/// An option whose argument is one of some words.
template <class Value>
CLI::Option* add_choice(CLI::App& command, const std::string& name, Value& target,
                        const std::map<std::string, Value>& words, const std::string& description) {
  const auto assign = [words, &target](const std::string& word) { target = words.at(word); };
  return command.add_option_function<std::string>(name, assign, description)
      ->type_name("")
      ->check(CLI::IsMember(words));
}

}  // namespace hvk3
