#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "support/process.h"
#include "support/temporary_folder.h"

/// @file
/// The ground for tests that run the built tool. All of them simulate, so that no library of the
/// machine is ever loaded, and none of them sees its configuration file.

namespace hvk3::test {

using Words = std::vector<std::string>;
using Json = nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class Tool : public testing::Test {
 protected:
  Tool() { ::setenv("LD_PRELOAD", HVK3_NO_CONFIGURATION_FILE, 1); }

  /// A terminal with UTF-8 that names no colours, whatever the tests are run in.
  static void set_usual_terminal() {
    ::setenv("TERM", "xterm", 1);
    ::setenv("LC_ALL", "C.UTF-8", 1);
    ::unsetenv("COLORTERM");
    ::unsetenv("NO_COLOR");
  }

  /// @param name of the command, with a blank behind its group
  static Words command(const std::string& name, const Words& more) {
    Words words = {HVK3_TOOL};
    std::istringstream parts(name);
    std::copy(std::istream_iterator<std::string>(parts), {}, std::back_inserter(words));
    words.insert(words.end(), {"--simulate", "--pace", "unlimited"});
    words.insert(words.end(), more.begin(), more.end());
    return words;
  }

  /// The tool with simulated scanners and no waiting between frames.
  static Outcome simulate(const std::string& name, const Words& more = {}) {
    return run(command(name, more));
  }

  /// The JSON object that the tool prints.
  static Json simulate_json(const std::string& name, Words more = {}) {
    more.emplace_back("--json");
    return Json::parse(simulate(name, more).out);
  }

  TemporaryFolder m_cFolder;
};

}  // namespace hvk3::test
