#include "view/shortening.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace hvk3::test {
namespace {

/// @param room characters that there is room for
std::string shorten(const std::string& text, int room) {
  return view::shorten(text, [room](const std::string& each) {
    return std::count_if(each.begin(), each.end(), [](char byte) {
             return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
           }) <= room;
  });
}

TEST(Shortening, LeavesATextThatFits) { EXPECT_EQ(shorten("red LED", 7), "red LED"); }

TEST(Shortening, KeepsTheBeginningAndTheEnd) {
  EXPECT_EQ(shorten("/a/long/path.png: no space", 15), "/a/lon... space");
}

TEST(Shortening, CountsCharactersAndNoBytes) {
  EXPECT_EQ(shorten("äöüäöüäöü", 9), "äöüäöüäöü");
  EXPECT_EQ(shorten("äöüäöüäöü", 8), "äöü...öü");
}

TEST(Shortening, CutsNoCharacterInTwo) {
  EXPECT_EQ(shorten("€€€€€€", 4), "€...");
  EXPECT_EQ(shorten("€€€€€€", 5), "€...€");
}

TEST(Shortening, LeavesTheDotsAloneWhereThereIsNoRoom) {
  EXPECT_EQ(shorten("Fake detection", 1), "...");
}

TEST(Shortening, TakesBytesThatAreNoCharacters) {
  EXPECT_EQ(shorten("a\x80\x80\xC3zzzz", 5), "a\x80\x80...z");
}

}  // namespace
}  // namespace hvk3::test
