#include <filesystem>

#include "tools/files.h"
#include "tools/manual.h"
#include "tools/tool_fixture.h"

namespace hvk3::test {
namespace {

using testing::ContainsRegex;
using testing::IsSupersetOf;
using testing::SizeIs;

class ManPage : public Tool {
 protected:
  static Words pages() {
    Words names;
    for (const auto& entry : std::filesystem::directory_iterator(HVK3_MAN_DIR)) {
      if (entry.path().extension() == ".1") {  // beside them lie the compressed ones
        names.push_back(entry.path().stem().string());
      }
    }
    return names;
  }

  static std::string path(const std::string& name) {
    return std::string(HVK3_MAN_DIR) + '/' + name + ".1";
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
};

TEST_F(ManPage, IsThereForTheToolAndEachCommandAndGroup) {
  EXPECT_THAT(pages(), SizeIs(1U + 20 + 4));
  EXPECT_THAT(pages(), IsSupersetOf({"hvk3", "hvk3-capture", "hvk3-property-get"}));
}

TEST_F(ManPage, IsFreeOfWarningsAtTheUsualWidth) {
  for (const std::string& name : pages()) {
    EXPECT_THAT(warnings_of_page(path(name)), IsEmpty()) << name;
  }
}

TEST_F(ManPage, SaysOfEachOptionAndCommandWhatTheHelpSays) {
  for (const std::string& name : pages()) {
    expect_page_says(read_page(path(name)), help(name));
  }
}

TEST_F(ManPage, AndHelpCallNoArgumentByTheTypeOfAVariable) {
  for (const std::string& name : pages()) {
    EXPECT_THAT(help(name), Not(ContainsRegex("U?INT|FLOAT|TEXT|[ A-Z]:[{A-Z]"))) << name;
    EXPECT_THAT(read_page(path(name)), Not(ContainsRegex("U?INT |FLOAT|TEXT"))) << name;
  }
}

TEST_F(ManPage, TellsTheCallAsTheHelpDoes) {
  for (const std::string& name : pages()) {
    const std::string help = ManPage::help(name);
    const std::size_t usage = help.find("hvk3", help.find("\nUsage: "));
    const std::string call = help.substr(usage, help.find('\n', usage) - usage);
    EXPECT_THAT(read_page(path(name)), HasSubstr("\n       " + call + '\n'));
  }
}

TEST_F(ManPage, NamesTheCommandAsItIsCalled) {
  EXPECT_THAT(read_page(path("hvk3-property-get")),
              HasSubstr("\n       hvk3 property get [OPTIONS] [NAME...]\n"));
}

TEST_F(ManPage, HasTheExamplesOfTheHelp) {
  const std::string page = read_page(path("hvk3-capture"));
  EXPECT_THAT(page, HasSubstr("EXAMPLES\n"));
  EXPECT_THAT(page, HasSubstr("hvk3 capture --out finger.png --show     wait for a finger"));
}

TEST_F(ManPage, NamesTheExitStatuses) {
  EXPECT_THAT(read_page(path("hvk3")), HasSubstr("0 success, 1 internal error, 2 usage"));
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
