#include "steady_finger.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>

#include "detection/images.h"

namespace example {
namespace {

using Osv::utilities::ClSimpleBitmap;

/// Shows the strategy frames of one gray level each, and counts finished images.
long images(std::initializer_list<unsigned char> levels) {
  SteadyFinger strategy;
  return std::count_if(levels.begin(), levels.end(), [&](unsigned char level) {
    ClSimpleBitmap in = Osv::test::gray_image(10, 5, level);
    ClSimpleBitmap out;
    return strategy.Detect(in, out);
  });
}

TEST(SteadyFinger, AnEmptyPlatenIsNoFingerHoweverSteady) {
  EXPECT_EQ(images({250, 250, 250, 250, 250, 250}), 0);
}

TEST(SteadyFinger, AFingerThatStillMovesIsNotTaken) {
  EXPECT_EQ(images({250, 220, 210, 200, 190, 180}), 0);
}

TEST(SteadyFinger, AFingerAtRestIsTakenOnce) {
  EXPECT_EQ(images({250, 220, 200, 200, 200, 200}), 1);
  EXPECT_EQ(images({250, 220, 200, 200, 200, 200, 200, 200}), 1);
}

TEST(SteadyFinger, ALittleNoiseIsRest) { EXPECT_EQ(images({250, 200, 201, 200, 199}), 1); }

TEST(SteadyFinger, TheNextFingerIsTakenToo) {
  EXPECT_EQ(images({200, 200, 200, 200, 250, 180, 180, 180, 180}), 2);
}

TEST(SteadyFinger, TheFinishedImageIsACopyOfTheFrame) {
  SteadyFinger strategy;
  ClSimpleBitmap in = Osv::test::noise_image(33, 5, 1);
  ClSimpleBitmap out;
  for (int frame = 0; frame < 3; ++frame) {
    EXPECT_FALSE(strategy.Detect(in, out));
  }
  EXPECT_TRUE(strategy.Detect(in, out));
  EXPECT_TRUE(Osv::test::same_block(in, out));
}

}  // namespace
}  // namespace example
