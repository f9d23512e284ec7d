#include <filesystem>
#include <regex>

#include "tools/files.h"
#include "tools/tool_fixture.h"

namespace hvk3::test {
namespace {

using testing::IsSupersetOf;
using testing::SizeIs;

class ManPage : public Tool {
 protected:
  static Words pages() {
    Words names;
    for (const auto& entry : std::filesystem::directory_iterator(HVK3_MAN_DIR)) {
      names.push_back(entry.path().stem().string());
    }
    return names;
  }

  static std::string path(const std::string& name) {
    return std::string(HVK3_MAN_DIR) + '/' + name + ".1";
  }

  /// A page as a reader has it, in plain letters and long lines.
  static std::string read(const std::string& name) {
    const Outcome outcome =
        run({"/usr/bin/groff", "-man", "-ww", "-Tascii", "-P-cbou", "-rLL=999n", path(name)});
    EXPECT_EQ(outcome.status, 0) << name;
    EXPECT_THAT(outcome.error, IsEmpty()) << name;
    return outcome.out;
  }

  /// The help of the command that a page is for.
  static std::string help(const std::string& name) {
    Words words = {HVK3_TOOL};
    std::istringstream parts(name);
    std::string word;
    std::getline(parts, word, '-');
    while (std::getline(parts, word, '-')) {
      words.push_back(word);
    }
    words.emplace_back("--help");
    return run(words).out;
  }

  /// The options and commands of a help, and what it says of them.
  static Words described(const std::string& help) {
    static const std::regex kOption(
        R"(\n  (?:-[a-z],)?(--[a-z-]+|[a-z]+)[^\n]*?\n? {4,}(\S[^\n]+))");
    Words found;
    for (std::sregex_iterator at(help.begin(), help.end(), kOption), end; at != end; ++at) {
      found.insert(found.end(), {at->str(1), at->str(2)});
    }
    return found;
  }
};

TEST_F(ManPage, IsThereForTheToolAndEachCommandAndGroup) {
  EXPECT_THAT(pages(), SizeIs(1U + 20 + 4));
  EXPECT_THAT(pages(), IsSupersetOf({"hvk3", "hvk3-capture", "hvk3-property-get"}));
}

TEST_F(ManPage, IsFreeOfWarningsAtTheUsualWidth) {
  for (const std::string& name : pages()) {
    const Outcome outcome = run({"/usr/bin/groff", "-man", "-ww", "-z", "-Tascii", path(name)});
    EXPECT_EQ(outcome.status, 0) << name;
    EXPECT_THAT(outcome.error, IsEmpty()) << name;
  }
}

TEST_F(ManPage, SaysOfEachOptionAndCommandWhatTheHelpSays) {
  for (const std::string& name : pages()) {
    const std::string page = read(name);
    const std::string text = help(name);
    const Words expected = described(text.substr(0, text.find("\nExamples:")));
    EXPECT_THAT(expected, Not(IsEmpty())) << name;
    for (const std::string& words : expected) {
      EXPECT_THAT(page, HasSubstr(words)) << name;
    }
  }
}

TEST_F(ManPage, HasTheExamplesOfTheHelp) {
  const std::string page = read("hvk3-capture");
  EXPECT_THAT(page, HasSubstr("EXAMPLES\n"));
  EXPECT_THAT(page, HasSubstr("hvk3 capture --out finger.png --show     wait for a finger"));
}

TEST_F(ManPage, NamesTheExitStatuses) {
  EXPECT_THAT(read("hvk3"), HasSubstr("0 success, 1 internal error, 2 usage"));
}

TEST_F(ManPage, HoldsNothingOfTheMachineAndTheDayThatMadeIt) {
  for (const std::string& name : pages()) {
    const std::string page = read_file(path(name));
    EXPECT_THAT(page, HasSubstr(" 1 2026-11-22 \"hvk3 ")) << name;
    EXPECT_THAT(page, Not(HasSubstr(HVK3_SIMULATOR_DIR))) << name;
  }
}

}  // namespace
}  // namespace hvk3::test
