#include "foundation/config_file.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>

#include "foundation/exceptions.h"
#include "foundation/temporary_file.h"
#include "support/failure_of.h"

namespace Osv {
namespace {

using testing_support::failure_of;
using Failure = CXConfigFileParsingException;

CXConfigFile file_of(const std::string& text) {
  CXConfigFile file;
  std::istringstream in(text);
  file.Load(in);
  return file;
}

std::string saved(const CXConfigFile& file) {
  std::ostringstream out;
  file.Save(out);
  return out.str();
}

/// What is left of a text after loading and saving.
std::string round_trip(const std::string& text) { return saved(file_of(text)); }

/// A section tells its name where it misses a parameter.
void expect_named(const CXConfigSection& section, const std::string& name) {
  std::string value;
  const auto failure = failure_of<Failure>([&] { section.ReadValue("missing", value); });
  EXPECT_EQ(failure.GetDescription(),
            "Error -1011 by parsing config file missing parameter in " + name + " section");
}

TEST(ConfigFile, SortsSectionsAndNamesAndDropsCommentsAndEmptyValues) {
  EXPECT_EQ(round_trip("# top\n[b]\ny=2 # two\nx = 1\n\n[a]\nempty=\n"),
            "[a]\n[b]\nx\t=\t1\ny\t=\t2\n");
}

TEST(ConfigFile, IgnoresLinesInFrontOfTheFirstSection) {
  EXPECT_EQ(round_trip("a=1\n[s]\nb=2\n"), "[s]\nb\t=\t2\n");
}

TEST(ConfigFile, JoinsASectionThatStandsTwice) {
  EXPECT_EQ(round_trip("[s]\na=1\n[t]\nc=3\n[s]\nb=2\n"), "[s]\na\t=\t1\nb\t=\t2\n[t]\nc\t=\t3\n");
}

TEST(ConfigFile, KeepsTheLastValueOfANameThatStandsTwice) {
  EXPECT_EQ(round_trip("[s]\na=1\na=2\n"), "[s]\na\t=\t2\n");
}

TEST(ConfigFile, TakesALineThatStartsWithACommentSignAsCommentEvenWithABracket) {
  EXPECT_EQ(round_trip("[s]\n# [t]\na=1\n"), "[s]\na\t=\t1\n");
}

TEST(ConfigFile, KeepsAParameterLineWhoseCommentHoldsABracket) {
  EXPECT_EQ(round_trip("[s]\na = 1 # see [t]\n"), "[s]\na\t=\t1\n");
}

TEST(ConfigFile, IgnoresALineWhoseClosingBracketStandsFirst) {
  EXPECT_EQ(round_trip("[s]\n]x[t]\na=1\n"), "[s]\na\t=\t1\n");
}

TEST(ConfigFile, TakesTheRestOfTheLineAsNameWithoutAClosingBracket) {
  EXPECT_EQ(round_trip("[open end \na=1\n"), "[open end]\na\t=\t1\n");
}

TEST(ConfigFile, IgnoresACommentBehindASectionName) {
  EXPECT_EQ(round_trip("[s] # comment\na=1\n"), "[s]\na\t=\t1\n");
}

TEST(ConfigFile, TakesACommentIntoASectionNameWithoutAClosingBracket) {
  EXPECT_EQ(round_trip("[open # c\na=1\n"), "[open # c]\na\t=\t1\n");
}

TEST(ConfigFile, TakesTheClosingBracketIntoTheNameOfAnIndentedSection) {
  EXPECT_EQ(round_trip("  [abc]\na=1\n"), "[abc]]\na\t=\t1\n");
  EXPECT_EQ(round_trip(" [abc] tail\n"), "[abc]]\n");
  EXPECT_EQ(round_trip("   [abc] tail\n"), "[abc] t]\n");
}

TEST(ConfigFile, TakesABracketPairInAValueAsSection) {
  EXPECT_EQ(round_trip("[s]\na=[1]\nb=2\n"), "[1]]\nb\t=\t2\n[s]\n");
  EXPECT_EQ(round_trip("[s]\nname=[1] and more\n"), "[1] and]\n[s]\n");
}

TEST(ConfigFile, TrimsTheSectionName) { EXPECT_EQ(round_trip("[name ]\n"), "[name]\n"); }

TEST(ConfigFile, LeavesATrailingBlankForEachLeadingOneOfTheSectionName) {
  EXPECT_EQ(round_trip("[ name ]\n"), "[name ]\n");
}

TEST(ConfigFile, AcceptsAnEmptySectionName) { EXPECT_EQ(round_trip("[]\na=1\n"), "[]\na\t=\t1\n"); }

TEST(ConfigFile, KeepsNamesThatDifferInCaseApart) {
  EXPECT_EQ(round_trip("[s]\na=1\nA=2\n[S]\n"), "[S]\n[s]\nA\t=\t2\na\t=\t1\n");
}

TEST(ConfigFile, ReadsLinesThatEndWithCarriageReturnAndNewline) {
  EXPECT_EQ(round_trip("[s]\r\na = 1\r\n"), "[s]\na\t=\t1\n");
}

TEST(ConfigFile, CountsALastLineWithoutNewline) {
  EXPECT_EQ(round_trip("[s]\na=1"), "[s]\na\t=\t1\n");
}

TEST(ConfigFile, TakesTheFileAsBytes) {
  const std::string line("a=\xff\0\xfe", 5);
  EXPECT_EQ(round_trip("[s]\n" + line), std::string("[s]\na\t=\t\xff\0\xfe\n", 12));
}

TEST(ConfigFile, IgnoresALineWithoutEqualsSign) { EXPECT_EQ(round_trip("[s]\nabc\n"), "[s]\n"); }

TEST(ConfigFile, StoresALineThatBeginsWithEqualsSignUnderTheEmptyName) {
  EXPECT_EQ(round_trip("[s]\n=value\n"), "[s]\n\t=\tvalue\n");
}

TEST(ConfigFile, ReplacesItsContentWithEachLoad) {
  CXConfigFile file = file_of("[old]\na=1\n");
  std::istringstream in("[new]\n");
  file.Load(in);
  EXPECT_EQ(saved(file), "[new]\n");
}

TEST(ConfigFile, LeavesTheStreamInAFailedState) {
  CXConfigFile file;
  std::istringstream in("[s]\n");
  file.Load(in);
  EXPECT_TRUE(in.fail());
}

TEST(ConfigFile, RefusesAStreamThatHasFailedAndKeepsItsContent) {
  for (const auto state : {std::ios::failbit, std::ios::badbit}) {
    CXConfigFile file = file_of("[s]\n");
    std::istringstream in("[t]\n");
    in.setstate(state);
    EXPECT_EQ(failure_of<Failure>([&] { file.Load(in); }).GetErrorNumber(), -1007);
    EXPECT_EQ(saved(file), "[s]\n");
  }
}

/// Gives its text and then fails like a broken disk.
class BreakingBuffer : public std::stringbuf {
 public:
  using std::stringbuf::stringbuf;

 protected:
  int_type underflow() override {
    const int_type next = std::stringbuf::underflow();
    if (next == traits_type::eof()) {
      throw std::ios_base::failure("broken");
    }
    return next;
  }
};

TEST(ConfigFile, KeepsWhatWasReadWhenTheStreamTurnsBad) {
  CXConfigFile file;
  BreakingBuffer buffer("[s]\na=1\nb=");
  std::istream in(&buffer);
  file.Load(in);
  EXPECT_TRUE(in.bad());
  EXPECT_EQ(saved(file), "[s]\na\t=\t1\n");
}

TEST(ConfigFile, LoadsAFileByItsPath) {
  const testing_support::TemporaryFile on_disk("[s]\na=1\n");
  CXConfigFile file;
  file.Load(on_disk.path());
  EXPECT_EQ(saved(file), "[s]\na\t=\t1\n");
}

TEST(ConfigFile, ThatCannotBeOpenedThrowsWithoutAnyNameAndKeepsItsContent) {
  CXConfigFile file = file_of("[s]\n");
  const auto failure = failure_of<Failure>([&] { file.Load("/nonexistent/x.cfg"); });
  EXPECT_EQ(failure.GetErrorNumber(), -1007);
  EXPECT_STREQ(failure.GetDescription(), "Error -1007 by parsing config file");
  EXPECT_EQ(saved(file), "[s]\n");
}

TEST(ConfigFile, OfADirectoryIsEmpty) {
  CXConfigFile file = file_of("[s]\n");
  file.Load("/");
  EXPECT_TRUE(file.empty());
}

TEST(ConfigFileLookUp, AddsAMissingSectionUnderItsName) {
  CXConfigFile file;
  file["s"]["a"] = "1";
  EXPECT_EQ(saved(file), "[s]\na\t=\t1\n");
  expect_named(file["s"], "s");
}

TEST(ConfigFileLookUp, OfAConstantFileGivesACopy) {
  const CXConfigFile file = file_of("[s]\na=1\n");
  CXConfigSection copy = file["s"];
  EXPECT_EQ(copy["a"], "1");
  copy["a"] = "2";
  EXPECT_EQ(saved(file), "[s]\na\t=\t1\n");
}

TEST(ConfigFileLookUp, OfAMissingSectionInAConstantFileGivesAnEmptyOneOfThatNameAndAddsNothing) {
  const CXConfigFile file = file_of("[s]\na=1\n");
  const CXConfigSection section = file["t"];
  EXPECT_EQ(section["a"], "");
  expect_named(section, "t");
  EXPECT_EQ(file.size(), 1U);
}

TEST(ConfigFileLookUp, OfAMandatorySectionGivesTheSectionItself) {
  CXConfigFile file = file_of("[s]\na=1\n");
  file.GetMandatory("s")["a"] = "2";
  EXPECT_EQ(std::as_const(file).GetMandatory("s")["a"], "2");
}

TEST(ConfigFileLookUp, OfAMissingMandatorySectionThrowsItsName) {
  CXConfigFile file;
  const auto failure = failure_of<Failure>([&] { file.GetMandatory("s"); });
  EXPECT_EQ(failure.GetErrorNumber(), -1010);
  EXPECT_STREQ(failure.GetDescription(), "Error -1010 by parsing config file s section");
  const auto constant = failure_of<Failure>([&] { std::as_const(file).GetMandatory("s"); });
  EXPECT_STREQ(constant.GetDescription(), failure.GetDescription());
  EXPECT_TRUE(file.empty());
}

TEST(ConfigFileName, StandsInEtcWithItsEnding) {
  EXPECT_EQ(cfg::CfgFileName("abc"), "/etc/abc.cfg");
}

}  // namespace
}  // namespace Osv
