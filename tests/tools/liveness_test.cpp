#include "tools/tool_fixture.h"

namespace hvk3::test {
namespace {

class Liveness : public Tool {
 protected:
  /// The verdicts of a simulated finger, one for each frame, however long they take.
  static Json verdicts(Words more) {
    more.insert(more.end(), {"--timeout", "0"});
    return simulate_json("liveness", more)["verdicts"];
  }

  /// The same for a finger of this score.
  static Json verdicts_at(int score, Words more) {
    more.emplace_back("--faults");
    more.push_back("FakeFingerDetectionEvaluateLiveliness gives " + std::to_string(score));
    return verdicts(more);
  }
};

TEST_F(Liveness, TellsFrameScoreStateThresholdAndVerdict) {
  const Outcome outcome = simulate("liveness", {"--timeout", "0"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 40);
  EXPECT_THAT(outcome.out, StartsWith("1\t0.0\t0\t48\tno-finger\n"));
  EXPECT_THAT(outcome.out, testing::ContainsRegex("\n40\t9[0-9]\\.[0-9]\t0\t48\tlive\n"));
}

TEST_F(Liveness, HasEveryJudgementInJson) {
  const Json object = simulate_json("liveness", {"--count", "3"});
  EXPECT_EQ(object["level"], 1);
  EXPECT_EQ(object["threshold"], 48);
  EXPECT_EQ(object["judgements"].size(), 3U);
  EXPECT_EQ(object["judgements"][2],
            Json::parse(R"({"frame": 3, "score": 0.0, "state": 0, "verdict": "no-finger"})"));
  EXPECT_EQ(object["verdicts"], Json::parse(R"({"live": 0, "fake": 0, "no-finger": 3})"));
  EXPECT_GE(object["frames"], 3);
}

TEST_F(Liveness, TakesNoFrameOfAnEmptyPlatenForAFinger) {
  EXPECT_EQ(verdicts({"--empty", "--count", "5"})["no-finger"], 5);
}

TEST_F(Liveness, CallsAFingerUpToTheThresholdAFake) {
  const Json all = verdicts_at(48, {});
  EXPECT_GT(all["fake"], 0);
  EXPECT_EQ(all["live"], 0);
}

TEST_F(Liveness, CallsAFingerAboveTheThresholdLive) {
  const Json all = verdicts_at(49, {});
  EXPECT_GT(all["live"], 0);
  EXPECT_EQ(all["fake"], 0);
}

TEST_F(Liveness, CallsOnlyTheFrameOfTheFakeAFake) {
  const Json all = verdicts({"--faults", "FakeFingerDetectionEvaluateLiveliness call 30 gives 20"});
  EXPECT_EQ(all["fake"], 1);
  EXPECT_GT(all["live"], 5);
}

TEST_F(Liveness, JudgesByTheLevel) {
  EXPECT_GT(verdicts_at(55, {"--level", "1"})["live"], 0);
  EXPECT_GT(verdicts_at(55, {"--level", "2"})["fake"], 0);
}

TEST_F(Liveness, JudgesByAThresholdThatTheUserSets) {
  EXPECT_GT(verdicts_at(80, {"--set", "threshold=80"})["fake"], 0);
  EXPECT_GT(verdicts_at(81, {"--set", "threshold=80"})["live"], 0);
}

TEST_F(Liveness, EndsWith4WhenTheDetectorFails) {
  const Json object =
      simulate_json("liveness", {"--faults", "FakeFingerDetectionInitialize fails with -2"});
  EXPECT_EQ(object["exit"], 4);
  EXPECT_EQ(object["error"]["number"], 23);
}

TEST_F(Liveness, EndsWith5WhenTheFramesDoNotComeInTime) {
  EXPECT_EQ(simulate("liveness", {"--count", "1000000", "--timeout", "0.2"}).status, 5);
}

TEST_F(Liveness, KnowsTwoLevels) {
  EXPECT_EQ(simulate("liveness", {"--level", "3"}).status, 2);
  EXPECT_EQ(simulate("liveness", {"--level", "0"}).status, 2);
}

TEST_F(Liveness, EndsWith3WithoutAScanner) {
  EXPECT_EQ(simulate("liveness", {"--scanners", "0"}).status, 3);
}

}  // namespace
}  // namespace hvk3::test
