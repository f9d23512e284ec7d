#include "guide/guide_fixture.h"

int fake_finger_main(int, char**);

namespace Osv::guide {
namespace {

/// A finger that lies on the platen.
class FakeFingerExample : public GuideTest {
 protected:
  FakeFingerExample() { bench.set_timeline(simulator::Timeline::settled_finger()); }

  void score(const std::string& words) {
    bench.set_faults("FakeFingerDetectionEvaluateLiveliness " + words);
  }
};

TEST_F(FakeFingerExample, TakesALiveFingerForLive) {
  const Outcome outcome = run(&fake_finger_main);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, StartsWith("a live finger scores above 48\n"));
  EXPECT_THAT(outcome.out, EndsWith(": live\n0 of 10 images are fake\n"));
}

TEST_F(FakeFingerExample, TakesAFakeFingerForFake) {
  score("gives 10");
  const Outcome outcome = run(&fake_finger_main);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, EndsWith("score 10: fake\n10 of 10 images are fake\n"));
}

TEST_F(FakeFingerExample, TellsTheImageOfTheFakeFromThoseAroundIt) {
  score("call 3 gives 10");
  const Outcome outcome = run(&fake_finger_main);
  EXPECT_THAT(outcome.out, HasSubstr(": live\nscore 10: fake\nscore "));
  EXPECT_THAT(outcome.out, EndsWith("\n1 of 10 images are fake\n"));
}

TEST_F(FakeFingerExample, HasAHigherThresholdAtSecurityLevel2) {
  score("gives 55");
  const Outcome outcome = run(&fake_finger_main, {"2"});
  EXPECT_THAT(outcome.out, StartsWith("a live finger scores above 62\n"));
  EXPECT_THAT(outcome.out, EndsWith("\n10 of 10 images are fake\n"));
}

TEST_F(FakeFingerExample, ReportsAMissingDetector) {
  libraries.make_absent("libostrevanfakefingerdetection.so");
  const Outcome outcome = run(&fake_finger_main);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.error, StartsWith("error 23: "));
  EXPECT_THAT(outcome.error, HasSubstr("libostrevanfakefingerdetection.so"));
}

}  // namespace
}  // namespace Osv::guide
