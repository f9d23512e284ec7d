#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "support/process.h"

/// @file
/// Pages of the manual, as a reader has them.

namespace hvk3::test {

/// A page in plain letters and long lines.
inline std::string read_page(const std::string& path) {
  const Outcome outcome =
      run({"/usr/bin/groff", "-man", "-ww", "-Tascii", "-P-cbou", "-rLL=999n", path});
  EXPECT_EQ(outcome.status, 0) << path;
  EXPECT_THAT(outcome.error, testing::IsEmpty()) << path;
  return outcome.out;
}

/// What the formatter has to say of a page at the usual width.
inline std::string warnings_of_page(const std::string& path) {
  const Outcome outcome = run({"/usr/bin/groff", "-man", "-ww", "-z", "-Tascii", path});
  return outcome.status == 0 ? outcome.error : "groff failed: " + outcome.error;
}

/// The options and commands of a help, and what it says of them.
inline std::vector<std::string> described(const std::string& help) {
  static const std::regex kOption(R"(\n  (?:-[a-z],)?(--[a-z-]+|[a-z]+)[^\n]*?\n? {4,}(\S[^\n]+))");
  const std::string options = help.substr(0, help.find("\nExamples:"));
  std::vector<std::string> found;
  for (std::sregex_iterator at(options.begin(), options.end(), kOption), end; at != end; ++at) {
    found.insert(found.end(), {at->str(1), at->str(2)});
  }
  return found;
}

inline void expect_page_says(const std::string& page, const std::string& help) {
  const std::vector<std::string> expected = described(help);
  EXPECT_THAT(expected, testing::Not(testing::IsEmpty())) << help;
  for (const std::string& words : expected) {
    EXPECT_THAT(page, testing::HasSubstr(words));
  }
}

}  // namespace hvk3::test
