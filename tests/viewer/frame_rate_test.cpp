#include "view/frame_rate.h"

#include <gtest/gtest.h>

namespace hvk3::test {
namespace {

using namespace std::chrono_literals;
using Clock = view::FrameRate::Clock;

constexpr Clock::time_point kStart(1h);

view::FrameRate rate_of(int frames, Clock::duration apart) {
  view::FrameRate rate;
  for (int i = 0; i < frames; ++i) {
    rate.add(kStart + i * apart);
  }
  return rate;
}

TEST(FrameRate, IsThatOfTheLastFrames) {
  EXPECT_NEAR(rate_of(30, 100ms).at(kStart + 2900ms), 10.0, 0.01);
}

TEST(FrameRate, FollowsAChange) {
  view::FrameRate rate = rate_of(10, 10ms);
  for (int i = 1; i <= 10; ++i) {
    rate.add(kStart + i * 500ms);
  }
  EXPECT_NEAR(rate.at(kStart + 5s), 2.0, 0.01);
}

TEST(FrameRate, IsNoneBeforeTheSecondFrame) { EXPECT_EQ(rate_of(1, 1ms).at(kStart), 0.0); }

TEST(FrameRate, IsNoneWhenNothingHasComeForAWhile) {
  EXPECT_EQ(rate_of(10, 100ms).at(kStart + 4s), 0.0);
}

TEST(FrameRate, IsNoneOfFramesAtOneMoment) { EXPECT_EQ(rate_of(5, 0ms).at(kStart), 0.0); }

TEST(FrameRate, ForgetsWhatWasBeforeAPause) {
  view::FrameRate rate = rate_of(10, 100ms);
  rate.forget();
  EXPECT_EQ(rate.at(kStart + 900ms), 0.0);
}

}  // namespace
}  // namespace hvk3::test
