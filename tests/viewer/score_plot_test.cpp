#include "view/score_plot.h"

#include <gtest/gtest.h>

#include <limits>

namespace hvk3::test {
namespace {

constexpr SDL_Rect kArea = {10, 20, 101, 201};
constexpr std::size_t kRoom = 11;

view::ScorePlot plot(std::initializer_list<double> scores, unsigned int threshold = 50) {
  std::deque<Judgement> judgements;
  for (const double score : scores) {
    judgements.push_back({score, 0, eVerdict::Live});
  }
  return view::plot_scores(judgements, threshold, kRoom, kArea);
}

TEST(ScorePlot, HasItsNewestScoreAtTheRight) {
  const view::ScorePlot two = plot({10, 20});
  EXPECT_EQ(two.points[1].x, 110);
  EXPECT_EQ(two.points[0].x, 100);
}

TEST(ScorePlot, FillsItsWidthWhenItIsFull) {
  EXPECT_EQ(plot({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}).points.front().x, 10);
}

TEST(ScorePlot, StandsOnZeroAndReachesToAHundred) {
  const view::ScorePlot both = plot({0, 100});
  EXPECT_EQ(both.points[0].y, 220);
  EXPECT_EQ(both.points[1].y, 20);
  EXPECT_EQ(both.threshold_y, 120);
}

TEST(ScorePlot, MakesRoomForAHigherScore) {
  const view::ScorePlot high = plot({100, 400});
  EXPECT_EQ(high.top, 400.0);
  EXPECT_EQ(high.points[0].y, 170);
}

TEST(ScorePlot, MakesRoomAboveAHighThreshold) { EXPECT_EQ(plot({}, 400).top, 500.0); }

TEST(ScorePlot, KeepsWhatIsNoScoreAtItsEdge) {
  const view::ScorePlot odd = plot({-30, std::numeric_limits<double>::quiet_NaN()});
  EXPECT_EQ(odd.points[0].y, 220);
  EXPECT_EQ(odd.points[1].y, 220);
}

TEST(ScorePlot, HasNoPointWithoutAScore) { EXPECT_TRUE(plot({}).points.empty()); }

}  // namespace
}  // namespace hvk3::test
