#include "foundation/string_helper.h"

#include <gtest/gtest.h>

namespace Osv::stdstring_helper {
namespace {

std::string left(std::string text) {
  trim_left(text);
  return text;
}

std::string right(std::string text) {
  trim_right(text);
  return text;
}

std::string both(std::string text) {
  trim_both(text);
  return text;
}

TEST(TrimLeft, RemovesBlanksAndTabsInFrontOnly) { EXPECT_EQ(left(" \t a b \t"), "a b \t"); }

TEST(TrimLeft, LeavesACarriageReturnInFront) { EXPECT_EQ(left(" \ra"), "\ra"); }

TEST(TrimLeft, EmptiesAStringOfBlanksAndTabs) { EXPECT_EQ(left(" \t "), ""); }

TEST(TrimRight, RemovesBlanksTabsAndCarriageReturnsBehindOnly) {
  EXPECT_EQ(right(" a b \t\r \r"), " a b");
}

TEST(TrimRight, EmptiesAStringOfNothingElse) { EXPECT_EQ(right(" \t\r"), ""); }

TEST(TrimRight, LeavesANewlineAlone) { EXPECT_EQ(right("a\n"), "a\n"); }

TEST(TrimBoth, TrimsATextWithoutLeadingBlanksOnBothSides) { EXPECT_EQ(both("a b \t\r"), "a b"); }

TEST(TrimBoth, KeepsAsManyTrailingCharactersAsItRemovedInFront) {
  EXPECT_EQ(both("  word  "), "word  ");
  EXPECT_EQ(both(" word   "), "word ");
  EXPECT_EQ(both("   word \r"), "word \r");
}

TEST(TrimBoth, LeavesACarriageReturnInFront) { EXPECT_EQ(both("\ra"), "\ra"); }

TEST(TrimBoth, EmptiesAStringWithNothingBehindTheBlanks) {
  EXPECT_EQ(both(""), "");
  EXPECT_EQ(both(" \t"), "");
  EXPECT_EQ(both(" \r"), "");
}

}  // namespace
}  // namespace Osv::stdstring_helper
