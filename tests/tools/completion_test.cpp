#include <regex>
#include <set>
#include <sstream>

#include "tools/tool_fixture.h"

namespace hvk3::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsSupersetOf;

using WordSet = std::set<std::string>;

WordSet split(const std::string& text) {
  std::istringstream words(text);
  return {std::istream_iterator<std::string>(words), {}};
}

class Completion : public Tool {
 protected:
  /// What bash offers for the last of these words.
  static WordSet offered(const Words& line) {
    const std::string script =
        R"(source <("$0" completion bash); COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _hvk3
           echo "${COMPREPLY[@]}")";
    Words words = {"/bin/bash", "-c", script, HVK3_TOOL, "hvk3"};
    words.insert(words.end(), line.begin(), line.end());
    return split(run(words).out);
  }

  /// The tool's help for some words.
  static std::string help(Words words) {
    words.insert(words.begin(), HVK3_TOOL);
    words.emplace_back("--help");
    return run(words).out;
  }

  /// The commands that a help names, in the part that is about them.
  static WordSet commands(const std::string& help) {
    const std::size_t begin = help.find("Subcommands:");
    const std::size_t end = help.find("\nExamples:");
    return begin == std::string::npos ? WordSet()
                                      : matches(help.substr(begin, end - begin), "\n  ([a-z]+) ");
  }

  /// The options that a help describes.
  static WordSet options(const std::string& help) {
    return matches(help, "\n  (?:-[a-z],)?(--[a-z-]+)");
  }

  /// Every command with the words that lead to it, the tool itself included.
  static std::vector<Words> all_commands() {
    std::vector<Words> all = {{}};
    for (std::size_t i = 0; i < all.size(); ++i) {
      for (const std::string& below : commands(help(all[i]))) {
        all.push_back(all[i]);
        all.back().push_back(below);
      }
    }
    return all;
  }

 private:
  static WordSet matches(const std::string& text, const std::string& pattern) {
    const std::regex expression(pattern);
    WordSet found;
    for (std::sregex_iterator at(text.begin(), text.end(), expression), end; at != end; ++at) {
      found.insert(at->str(1));
    }
    return found;
  }
};

TEST_F(Completion, OffersTheCommandsAndOptionsOfTheHelp) {
  for (Words words : all_commands()) {
    const std::string text = help(words);
    WordSet expected = commands(text);
    expected.merge(options(text));
    words.emplace_back();
    EXPECT_THAT(offered(words), IsSupersetOf(expected)) << text;
  }
}

TEST_F(Completion, KnowsAllCommands) {
  EXPECT_EQ(all_commands().size(), 1U + 20 + 4);  // the tool, its commands, their groups
}

TEST_F(Completion, OffersJSONBehindEveryCommand) {
  for (const Words& words : all_commands()) {
    const std::string text = help(words);
    EXPECT_EQ(options(text).count("--json"), commands(text).empty() ? 1U : 0U) << text;
  }
}

TEST_F(Completion, IsAJSONObjectToo) {
  const std::string script = run({HVK3_TOOL, "completion", "bash"}).out;
  EXPECT_EQ(Json::parse(run({HVK3_TOOL, "completion", "bash", "--json"}).out)["script"], script);
}

TEST_F(Completion, GoesOnFromAWordBegun) {
  EXPECT_THAT(offered({"li"}), ElementsAre("list", "liveness"));
  EXPECT_THAT(offered({"property", "g"}), ElementsAre("get"));
  EXPECT_THAT(offered({"capture", "--simulate", "--mo"}), ElementsAre("--mode"));
}

TEST_F(Completion, OffersTheWordsThatAnOptionTakes) {
  EXPECT_THAT(offered({"capture", "--mode", ""}), ElementsAre("live", "plain"));
  EXPECT_THAT(offered({"leds", "--red", "o"}), ElementsAre("off", "on"));
}

TEST_F(Completion, OffersTheNamesOfProperties) {
  EXPECT_THAT(offered({"property", "get", ""}), Contains("low-contrast"));
  EXPECT_THAT(offered({"property", "set", "thr"}), ElementsAre("threshold"));
}

TEST_F(Completion, LeavesFileNamesToTheShell) {
  EXPECT_THAT(offered({"snap", "--out", ""}), IsEmpty());
}

TEST_F(Completion, NeedsNoPlugin) { EXPECT_EQ(run({HVK3_TOOL, "completion", "bash"}).status, 0); }

}  // namespace
}  // namespace hvk3::test
