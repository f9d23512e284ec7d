#include <algorithm>

#include "simulator/platen_fixture.h"

namespace Osv::simulator {
namespace {

class MovingFinger : public PlatenFixture {
 protected:
  MovingFinger() { bench.set_print(3, ePrint::Rolled); }

  /// Where the finger touches in each of the next frames.
  std::vector<double> centers(unsigned int count) {
    std::vector<double> all;
    for (unsigned int i = 0; i < count; ++i) {
      all.push_back(center_of(column_darkness(image())));
    }
    return all;
  }

  double level() { return mean(image()); }

  static constexpr double kEmpty = 248;
  static constexpr unsigned int kTouching = 3;  // frames on the first side before a roll
};

TEST_F(MovingFinger, ComesWithinFiveFramesAndStays) {
  bench.touch_down();
  const double first = level();
  EXPECT_LT(level(), first - 1);
  skip(3);
  const double settled = level();
  EXPECT_NEAR(level(), settled, 0.1);
  skip(20);
  EXPECT_NEAR(level(), settled, 0.1);
}

TEST_F(MovingFinger, ThatLiesAlreadyStaysWhereItIs) {
  bench.touch_down();
  skip(5);
  const double settled = level();
  bench.touch_down();
  EXPECT_NEAR(level(), settled, 0.1);
}

TEST_F(MovingFinger, LiftsWithinThreeFramesAndStaysAway) {
  bench.touch_down();
  skip(5);
  const double settled = level();
  bench.lift_off();
  const double lifting = level();
  EXPECT_GT(lifting, settled + 1);
  EXPECT_LT(lifting, kEmpty);
  skip(2);
  EXPECT_GT(level(), kEmpty);
  skip(10);
  EXPECT_GT(level(), kEmpty);
}

TEST_F(MovingFinger, ThatNeverCameHasNothingToLift) {
  bench.lift_off();
  EXPECT_GT(level(), kEmpty);
}

TEST_F(MovingFinger, RollsOverTheColumnsInTheirOrder) {
  bench.roll(eRoll::Right, 12);
  skip(kTouching);
  const std::vector<double> places = centers(12);
  EXPECT_TRUE(std::is_sorted(places.begin(), places.end()));
  EXPECT_LT(places.front(), 150);
  EXPECT_GT(places.back(), 350);
}

TEST_F(MovingFinger, RollsNoLongerThanItsFrames) {
  bench.roll(eRoll::Right, 6);
  skip(kTouching);
  const std::vector<double> places = centers(9);
  EXPECT_LT(places[4], places[5] - 10);
  EXPECT_NEAR(places[5], places[6], 1);
  EXPECT_NEAR(places[5], places[8], 1);
}

TEST_F(MovingFinger, RollsToTheLeftTheOtherWayRound) {
  bench.roll(eRoll::Left, 12);
  skip(kTouching);
  const std::vector<double> places = centers(12);
  EXPECT_TRUE(std::is_sorted(places.rbegin(), places.rend()));
  EXPECT_GT(places.front(), 350);
  EXPECT_LT(places.back(), 150);
}

TEST_F(MovingFinger, RollsThereAndBackWithinItsFrames) {
  bench.roll(eRoll::RightAndBack, 16);
  skip(kTouching);
  const std::vector<double> places = centers(16);
  EXPECT_TRUE(std::is_sorted(places.begin(), places.begin() + 8));
  EXPECT_TRUE(std::is_sorted(places.rbegin(), places.rbegin() + 8));
  EXPECT_GT(places[7], 350);
  EXPECT_NEAR(places.front(), places.back(), 2);
}

TEST_F(MovingFinger, RollsBackFromTheSideItLiesOnWithoutTouchingDownAnew) {
  bench.roll(eRoll::Right, 5);
  skip(kTouching + 5);
  bench.roll(eRoll::Left, 5);
  const std::vector<double> places = centers(5);
  EXPECT_GT(places.front(), 350);
  EXPECT_LT(places.back(), 150);
}

TEST_F(MovingFinger, TouchesWithEachColumnFullyAtSomeTimeOfARoll) {
  const std::vector<double> whole = column_darkness(settled_image());
  std::vector<double> most(whole.size());
  bench.set_timeline(Timeline::empty_platen());
  bench.roll(eRoll::Right, 20);
  for (unsigned int i = 0; i < kTouching + 20; ++i) {
    const std::vector<double> now = column_darkness(image());
    std::transform(now.begin(), now.end(), most.begin(), most.begin(),
                   [](double one, double other) { return std::max(one, other); });
  }
  for (std::size_t x = 0; x < whole.size(); ++x) {
    EXPECT_NEAR(most[x], whole[x], 1 + whole[x] / 20) << x;
  }
}

TEST_F(MovingFinger, TouchesWithAStripOnlyWhileItRolls) {
  bench.roll(eRoll::Right, 3);
  skip(kTouching);
  const std::vector<double> now = column_darkness(image());
  EXPECT_GT(now[120], 30);
  EXPECT_LT(now[300], 1);
}

TEST_F(MovingFinger, LiftsFromTheSideItHasRolledTo) {
  bench.roll(eRoll::Right, 3);
  skip(kTouching + 3);
  bench.lift_off();
  EXPECT_GT(centers(1).front(), 330);
  skip(2);
  EXPECT_GT(level(), kEmpty);
}

TEST_F(MovingFinger, NeedsAFrameToRoll) {
  EXPECT_THROW(bench.roll(eRoll::Right, 0), std::invalid_argument);
  bench.roll(eRoll::Right, 1);
  skip(kTouching);
  EXPECT_GT(centers(1).front(), 350);
}

TEST_F(MovingFinger, FollowsATimelineAgainWhenOneIsSet) {
  bench.roll(eRoll::Right, 5);
  skip(4);
  bench.set_timeline(Timeline::empty_platen());
  EXPECT_GT(level(), kEmpty);
}

class DirtyPlaten : public PlatenFixture {};

TEST_F(DirtyPlaten, IsMeasuredAsSoManyPercent) {
  EXPECT_EQ(contamination(), 0);
  for (const unsigned int percent : {5U, 20U, 60U, 100U}) {
    bench.set_dirt(percent);
    EXPECT_NEAR(contamination(), percent, 1);
  }
}

TEST_F(DirtyPlaten, IsCleanAgainWithoutDirt) {
  bench.set_dirt(30);
  EXPECT_GT(contamination(), 25);
  bench.set_dirt(0);
  EXPECT_EQ(contamination(), 0);
}

TEST_F(DirtyPlaten, ShowsInThePictureBesideTheFinger) {
  const double clean = mean(settled_image());
  bench.set_dirt(20);
  EXPECT_LT(mean(settled_image()), clean - 5);
}

TEST_F(DirtyPlaten, AcceptsNoMoreThanTheWhole) {
  EXPECT_THROW(bench.set_dirt(101), std::invalid_argument);
}

}  // namespace
}  // namespace Osv::simulator
