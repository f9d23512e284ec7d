#include "foundation/config_section.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "foundation/exceptions.h"
#include "support/failure_of.h"

namespace Osv {
namespace {

CXConfigSection section_of(const std::string& line) {
  CXConfigSection section("Scanner");
  section.ParseString1(line);
  return section;
}

std::string saved(const CXConfigSection& section) {
  std::ostringstream out;
  section.Save(out);
  return out.str();
}

bool read_bool(const std::string& value) {
  bool result = false;
  section_of("flag=" + value).ReadValue("flag", result);
  return result;
}

template <typename Action>
CXConfigFileParsingException failure_of(Action action) {
  return testing_support::failure_of<CXConfigFileParsingException>(action);
}

TEST(ConfigSectionTrimmedLine, TakesNameAndValueWithoutTheBlanksAround) {
  EXPECT_EQ(saved(section_of("name \t= some value\t ")), "name\t=\tsome value\n");
}

TEST(ConfigSectionTrimmedLine, EndsAtAnyCommentSign) {
  EXPECT_EQ(saved(section_of("name=one#two")), "name\t=\tone\n");
}

TEST(ConfigSectionTrimmedLine, ThatStartsWithACommentSignIsRefused) {
  CXConfigSection section("s");
  EXPECT_FALSE(section.ParseString1("#a=b"));
  EXPECT_EQ(saved(section), "");
}

TEST(ConfigSectionTrimmedLine, WithoutEqualsSignIsRefused) {
  CXConfigSection section("s");
  EXPECT_FALSE(section.ParseString1("abc"));
  EXPECT_FALSE(section.ParseString1(""));
  EXPECT_FALSE(section.ParseString1("  "));
  EXPECT_FALSE(section.ParseString1("abc # = d"));
  EXPECT_EQ(saved(section), "");
}

TEST(ConfigSectionTrimmedLine, ThatBeginsWithEqualsSignStoresUnderTheEmptyName) {
  CXConfigSection section("s");
  EXPECT_TRUE(section.ParseString1("=value"));
  EXPECT_EQ(section[""], "value");
}

TEST(ConfigSectionTrimmedLine, MayHaveAnEmptyValue) {
  const CXConfigSection section = section_of("name=");
  std::string value = "old";
  section.ReadValue("name", value);
  EXPECT_EQ(value, "");
}

TEST(ConfigSectionTrimmedLine, KeepsALaterEqualsSignInTheValue) {
  EXPECT_EQ(saved(section_of("a=b=c")), "a\t=\tb=c\n");
}

TEST(ConfigSectionTrimmedLine, ReplacesAnEarlierValue) {
  CXConfigSection section("s");
  EXPECT_TRUE(section.ParseString1("a=1"));
  EXPECT_TRUE(section.ParseString1("a=2"));
  EXPECT_EQ(section["a"], "2");
}

TEST(ConfigSectionTrimmedLine, ThatIsIndentedKeepsATrailingBlank) {
  EXPECT_EQ(saved(section_of(" a= b ")), "a\t=\tb \n");
}

TEST(ConfigSectionTrimmedLine, LosesATrailingCarriageReturnButNotALeadingOne) {
  EXPECT_EQ(saved(section_of("a=\rb\r")), "a\t=\t\rb\n");
}

TEST(ConfigSectionUntrimmedLine, KeepsAllBlanks) {
  CXConfigSection section("s");
  EXPECT_TRUE(section.ParseString(" a = b "));
  EXPECT_EQ(section[" a "], " b ");
}

TEST(ConfigSectionUntrimmedLine, WithACommentTakesAsManyCharactersAsStandInFrontOfIt) {
  CXConfigSection section("s");
  EXPECT_TRUE(section.ParseString("ab=c#defghi"));
  EXPECT_EQ(section["ab"], "c#de");
}

TEST(ConfigSectionUntrimmedLine, WithACommentNearTheEndIsCutThere) {
  CXConfigSection section("s");
  EXPECT_TRUE(section.ParseString("abc=d#e"));
  EXPECT_EQ(section["abc"], "d#e");
}

TEST(ConfigSectionUntrimmedLine, WithoutEqualsSignOrWithACommentInFrontOfItIsRefused) {
  CXConfigSection section("s");
  EXPECT_FALSE(section.ParseString("abc"));
  EXPECT_FALSE(section.ParseString("a#=b"));
  EXPECT_EQ(saved(section), "");
}

TEST(ConfigSectionUntrimmedLine, ReplacesAnEarlierValue) {
  CXConfigSection section("s");
  section.ParseString("a=1");
  section.ParseString("a=2");
  EXPECT_EQ(section["a"], "2");
}

TEST(ConfigSectionStream, DropsTheCharacterInFrontOfTheEqualsSign) {
  CXConfigSection section("s");
  std::istringstream in("name = value\nother =1");
  section.Load(in);
  EXPECT_EQ(saved(section), "name\t=\t value\nother\t=\t1\n");
}

TEST(ConfigSectionStream, KeepsTheFirstValueOfAName) {
  CXConfigSection section("s");
  std::istringstream in("a =1\na =2\n");
  section.Load(in);
  EXPECT_EQ(section["a"], "1");
}

TEST(ConfigSectionStream, TakesAsManyCharactersOfACommentedValueAsStandInFrontOfTheComment) {
  CXConfigSection section("s");
  std::istringstream in("ab =c#defghi");
  section.Load(in);
  EXPECT_EQ(section["ab"], "c#def");
}

TEST(ConfigSectionStream, IgnoresLinesThatAreNoParameters) {
  CXConfigSection section("s");
  std::istringstream in("abc\n# a =1\nb# =2\n");
  section.Load(in);
  EXPECT_EQ(saved(section), "");
}

TEST(ConfigSectionStream, TakesTheWholeLineAsNameWhenTheEqualsSignIsInFront) {
  CXConfigSection section("s");
  std::istringstream in("=v\n");
  section.Load(in);
  EXPECT_EQ(section["=v"], "v");
}

TEST(ConfigSectionStream, IsReturnedAtItsEnd) {
  CXConfigSection section("s");
  std::istringstream in("a =1");
  EXPECT_EQ(&section.Load(in), &in);
  EXPECT_TRUE(in.eof());
}

TEST(ConfigSectionSave, SortsNamesByByteAndDropsEmptyValues) {
  CXConfigSection section("s");
  for (const char* const line : {"b=1", "a=2", "B=3", "empty="}) {
    section.ParseString1(line);
  }
  EXPECT_EQ(saved(section), "B\t=\t3\na\t=\t2\nb\t=\t1\n");
}

TEST(ConfigSectionLookUp, AddsAMissingNameWithAnEmptyValue) {
  CXConfigSection section("s");
  section["a"] = "1";
  EXPECT_EQ(section["b"], "");
  bool out = true;
  EXPECT_EQ(failure_of([&] { section.ReadValue("b", out); }).GetErrorNumber(), -1012);
}

TEST(ConfigSectionLookUp, OfAConstantSectionAddsNothing) {
  const CXConfigSection section = section_of("a=1");
  EXPECT_EQ(section["a"], "1");
  EXPECT_EQ(section["b"], "");
  std::string out;
  EXPECT_EQ(failure_of([&] { section.ReadValue("b", out); }).GetErrorNumber(), -1011);
}

TEST(ConfigSectionCopy, HasTheSameLinesAndName) {
  const CXConfigSection original = section_of("a=1");
  const CXConfigSection copy(original);  // NOLINT(performance-unnecessary-copy-initialization)
  bool out = false;
  copy.ReadValue("a", out);
  EXPECT_TRUE(out);
  EXPECT_STREQ(failure_of([&] { copy.ReadValue("b", out); }).GetDescription(),
               "Error -1011 by parsing config file b parameter in Scanner section");
}

TEST(ConfigSectionReadValue, OfATextGivesItAsItStands) {
  std::string text = "old";
  section_of("a=Some Text").ReadValue("a", text);
  EXPECT_EQ(text, "Some Text");
}

TEST(ConfigSectionReadValue, OfAMissingNameThrowsWithSectionAndName) {
  bool out = false;
  const auto failure = failure_of([&] { section_of("a=1").ReadValue("b", out); });
  EXPECT_EQ(failure.GetErrorNumber(), -1011);
  EXPECT_STREQ(failure.GetDescription(),
               "Error -1011 by parsing config file b parameter in Scanner section");
}

TEST(ConfigSectionReadValue, KnowsFourWordsForEachBooleanInAnyCase) {
  for (const char* const word : {"true", "1", "y", "on", "TRUE", "Y", "On"}) {
    EXPECT_TRUE(read_bool(word)) << word;
  }
  for (const char* const word : {"false", "0", "n", "off", "False", "N", "OFF"}) {
    EXPECT_FALSE(read_bool(word)) << word;
  }
}

TEST(ConfigSectionReadValue, ThrowsForAWordThatIsNoBoolean) {
  for (const char* const word : {"yes", "no", "2", "", "true false"}) {
    EXPECT_EQ(failure_of([&] { read_bool(word); }).GetErrorNumber(), -1012) << word;
  }
}

TEST(ConfigSectionReadValue, TellsABadBooleanAsItStandsInTheFile) {
  const auto failure = failure_of([] { read_bool("YES"); });
  EXPECT_STREQ(failure.GetDescription(),
               "Error -1012 by parsing config file value YES of flag parameter in Scanner section");
}

TEST(ConfigSectionReadValue, WithAFallbackGivesItForAMissingName) {
  const CXConfigSection section("s");
  bool flag = false;
  section.ReadValue("a", flag, true);
  EXPECT_TRUE(flag);
  std::string text;
  section.ReadValue("a", text, "fallback");
  EXPECT_EQ(text, "fallback");
}

TEST(ConfigSectionReadValue, WithAFallbackPrefersAGoodValue) {
  bool flag = true;
  section_of("a=off").ReadValue("a", flag, true);
  EXPECT_FALSE(flag);
  section_of("a=on").ReadValue("a", flag, false);
  EXPECT_TRUE(flag);
  std::string text;
  section_of("a=value").ReadValue("a", text, "fallback");
  EXPECT_EQ(text, "value");
}

TEST(ConfigSectionReadValue, WithAFallbackPrefersTheValueEvenAnEmptyOne) {
  std::string text = "old";
  section_of("a=").ReadValue("a", text, "fallback");
  EXPECT_EQ(text, "");
}

TEST(ConfigSectionReadValue, WithAFallbackStillThrowsForABadBoolean) {
  bool flag = false;
  const auto failure = failure_of([&] { section_of("a=yes").ReadValue("a", flag, true); });
  EXPECT_EQ(failure.GetErrorNumber(), -1012);
}

}  // namespace
}  // namespace Osv
