#include "hvk3/settling.h"

#include <gtest/gtest.h>

#include "tools/image_builder.h"

namespace hvk3::test {
namespace {

Image gray(int level) { return make_gray_image(4, 4, level); }

TEST(Settling, NothingIsChosenBeforeTheRowIsComplete) {
  Settling settling(3);
  EXPECT_FALSE(settling.add(gray(9)));
  EXPECT_FALSE(settling.add(gray(8)));
  EXPECT_TRUE(settling.add(gray(7)));
}

TEST(Settling, TheDarkestOfTheRowIsChosen) {
  Settling settling(3);
  settling.add(gray(90));
  settling.add(gray(40));
  EXPECT_EQ(settling.add(gray(60))->mean(), 40.0);
}

TEST(Settling, EachRowIsJudgedByItself) {
  Settling settling(2);
  settling.add(gray(10));
  settling.add(gray(20));
  settling.add(gray(50));
  EXPECT_EQ(settling.add(gray(30))->mean(), 30.0);
}

TEST(Settling, ARowOfOneChoosesEveryImage) {
  Settling settling(1);
  EXPECT_EQ(settling.add(gray(200))->mean(), 200.0);
  EXPECT_EQ(settling.add(gray(100))->mean(), 100.0);
}

}  // namespace
}  // namespace hvk3::test
