#include <atomic>
#include <cstring>
#include <set>

#include "client/client_fixture.h"

namespace Osv::client {
namespace {

using ::testing::HasSubstr;

constexpr char kDetector[] = "libostrevanfakefingerdetection.so";
constexpr char kScoreCall[] = "FakeFingerDetectionEvaluateLiveliness";
constexpr unsigned int kEventHandle = 23;

/// What the last frame was scored with.
struct FrameScore {
  double score = 0;
  int state = 0;
};

/// A client that has fake finger events and a finger on the platen.
class FakeFinger : public ClientTest {
 protected:
  FakeFinger() {
    bench.set_timeline(simulator::Timeline::settled_finger());
    EXPECT_EQ(grabber->EnableEvents(kHandle, kEventHandle, &FakeFinger::on_event, this), 0U);
  }
  ~FakeFinger() override { disconnect(); }  // no event comes behind this

  unsigned long set(ePropertyIDs property, unsigned int value) {
    return grabber->SetFGProperty(property, value);
  }

  unsigned int get(ePropertyIDs property) {
    unsigned int value = 0;
    EXPECT_EQ(grabber->GetFGProperty(property, value), 0U);
    return value;
  }

  FrameScore frame_score() {
    unsigned char info[12];
    EXPECT_EQ(plugin.frame_info()(0, 0, 1, info), 0U);
    FrameScore result;
    std::memcpy(&result.score, info, sizeof(result.score));
    std::memcpy(&result.state, info + sizeof(result.score), sizeof(result.state));
    return result;
  }

  /// The detector takes the finger for one that lets no light through.
  void lay_down_fake_finger() { bench.set_finger_kind(simulator::eFingerKind::Printed); }

  /// One image; the number of events that it raised.
  int events_of_a_snap() {
    const int before = events;
    EXPECT_FALSE(snap().empty());
    return events - before;
  }

  static void on_event(int handle, unsigned int channel, eFGs grabber, unsigned int type,
                       void* user) {
    auto& self = *static_cast<FakeFinger*>(user);
    EXPECT_EQ(handle, static_cast<int>(kEventHandle));
    EXPECT_EQ(channel, kChannel);
    EXPECT_EQ(grabber, eFG_HVK3);
    EXPECT_EQ(type, 0U);
    self.thread = std::this_thread::get_id();
    ++self.events;
  }

  std::atomic<int> events{0};
  std::thread::id thread;
};

// ---- live and fake

TEST_F(FakeFinger, ALiveFingerRaisesNoEventAndScoresAboveTheThreshold) {
  ASSERT_EQ(set(ePropLiveliness, 1), 0U);
  EXPECT_EQ(events_of_a_snap(), 0);
  EXPECT_GT(frame_score().score, get(ePropFakeDetection));
  EXPECT_EQ(frame_score().state, 0);
}

TEST_F(FakeFinger, AFakeFingerRaisesTheEventAndItsScoreIsTold) {
  ASSERT_EQ(set(ePropLiveliness, 1), 0U);
  lay_down_fake_finger();
  EXPECT_EQ(events_of_a_snap(), 1);
  EXPECT_GT(frame_score().score, 0);
  EXPECT_LT(frame_score().score, 48);
}

TEST_F(FakeFinger, AMouldedFingerPassesAtLevel1) {
  bench.set_finger_kind(simulator::eFingerKind::Moulded);
  ASSERT_EQ(set(ePropLiveliness, 1), 0U);
  EXPECT_EQ(events_of_a_snap(), 0);
}

TEST_F(FakeFinger, AMouldedFingerRaisesTheEventAtLevel2) {
  bench.set_finger_kind(simulator::eFingerKind::Moulded);
  ASSERT_EQ(set(ePropLiveliness, 2), 0U);
  EXPECT_EQ(events_of_a_snap(), 1);
}

TEST_F(FakeFinger, AFakeFingerIsDeliveredAsALiveOneIs) {
  const Image plain = snap();
  ASSERT_EQ(set(ePropLiveliness, 1), 0U);
  lay_down_fake_finger();
  const Image image = snap();
  ASSERT_EQ(image.size(), plain.size());
  const lx::ImageView view(image.data());
  const unsigned char* const row = view.row_from_top(view.height() / 2);
  EXPECT_LT(*std::min_element(row, row + view.width()), 100);
}

TEST_F(FakeFinger, WithoutDetectionNothingIsScored) {
  lay_down_fake_finger();
  EXPECT_EQ(events_of_a_snap(), 0);
  EXPECT_EQ(frame_score().score, 0);
  EXPECT_EQ(bench.count(kScoreCall), 0U);
}

TEST_F(FakeFinger, WithANullCallbackIsNoticedByNobody) {
  ASSERT_EQ(set(ePropLiveliness, 1), 0U);
  ASSERT_EQ(grabber->EnableEvents(kHandle, kEventHandle, nullptr, nullptr), 0U);
  lay_down_fake_finger();
  EXPECT_EQ(events_of_a_snap(), 0);
}

TEST_F(FakeFinger, TheStateOfADoubtfulScoreIsTold) {
  ASSERT_EQ(set(ePropLiveliness, 1), 0U);
  bench.set_faults(std::string(kScoreCall) + " answers -799");
  EXPECT_EQ(events_of_a_snap(), 0);
  EXPECT_EQ(frame_score().state, -799);
}

TEST_F(FakeFinger, AnEmptyPlatenIsAWhiteImageWithScore0AndNoEvent) {
  bench.set_timeline(simulator::Timeline::empty_platen());
  ASSERT_EQ(set(ePropLiveliness, 1), 0U);
  const Image image = snap();
  ASSERT_FALSE(image.empty());
  const lx::ImageView view(image.data());
  EXPECT_TRUE(std::all_of(view.pixels(), image.data() + image.size(),
                          [](unsigned char level) { return level == 255; }));
  EXPECT_EQ(events, 0);
  EXPECT_EQ(frame_score().score, 0);
}

// ---- security level and threshold

TEST_F(FakeFinger, TheSecurityLevelMovesTheThresholdThatComesFromTheCurves) {
  ASSERT_EQ(set(ePropLiveliness, 1), 0U);
  EXPECT_EQ(get(ePropFakeDetection), 48U);
  disconnect();
  connect();
  ASSERT_EQ(set(ePropLiveliness, 2), 0U);
  EXPECT_EQ(get(ePropFakeDetection), 62U);
}

TEST_F(FakeFinger, AScoreBetweenTheThresholdsOfTheLevelsIsAFakeForTheHigherOneOnly) {
  bench.set_faults(std::string(kScoreCall) + " gives 55");
  ASSERT_EQ(set(ePropLiveliness, 1), 0U);
  EXPECT_EQ(events_of_a_snap(), 0);
  disconnect();
  connect();
  grabber->EnableEvents(kHandle, kEventHandle, &FakeFinger::on_event, this);
  ASSERT_EQ(set(ePropLiveliness, 2), 0U);
  EXPECT_EQ(events_of_a_snap(), 1);
}

TEST_F(FakeFinger, AThresholdThatIsKnownIsNotMovedByANewLevel) {
  bench.set_faults(std::string(kScoreCall) + " gives 55");
  ASSERT_EQ(set(ePropLiveliness, 1), 0U);
  EXPECT_EQ(events_of_a_snap(), 0);
  ASSERT_EQ(set(ePropLiveliness, 2), 0U);
  EXPECT_EQ(events_of_a_snap(), 0);
}

TEST_F(FakeFinger, TheClientsThresholdDecidesAndTheCurvesAreNotAsked) {
  ASSERT_EQ(set(ePropLiveliness, 1), 0U);
  ASSERT_EQ(set(ePropFakeDetection, 99), 0U);
  EXPECT_EQ(events_of_a_snap(), 1);
  ASSERT_EQ(set(ePropFakeDetection, 5), 0U);
  EXPECT_EQ(events_of_a_snap(), 0);
  EXPECT_EQ(bench.count("FakeFingerDetectionGetPropertyA"), 0U);
}

TEST_F(FakeFinger, AScoreEqualToTheThresholdIsAFake) {
  bench.set_faults(std::string(kScoreCall) + " gives 50");
  ASSERT_EQ(set(ePropLiveliness, 1), 0U);
  ASSERT_EQ(set(ePropFakeDetection, 50), 0U);
  EXPECT_EQ(events_of_a_snap(), 1);
}

TEST_F(FakeFinger, AThresholdSetBeforeDetectionIsOnReadsAs0AndCountsOnceItIs) {
  ASSERT_EQ(set(ePropFakeDetection, 99), 0U);
  EXPECT_EQ(get(ePropFakeDetection), 0U);
  ASSERT_EQ(set(ePropLiveliness, 1), 0U);
  EXPECT_EQ(get(ePropFakeDetection), 99U);
  EXPECT_EQ(events_of_a_snap(), 1);
}

// ---- failures

TEST_F(FakeFinger, AMissingDetectorIsReportedWithTheLoadersTextAndDetectionStaysOff) {
  libraries.make_absent(kDetector);
  EXPECT_EQ(set(ePropLiveliness, 1), 0x10000017U);
  EXPECT_THAT(last_text(), HasSubstr(kDetector));
  EXPECT_EQ(get(ePropLiveliness), 0U);
  EXPECT_EQ(events_of_a_snap(), 0);
}

TEST_F(FakeFinger, ADetectorThatLacksAFunctionIsReportedWithItsName) {
  libraries.leave_out(kDetector, "FakeFingerDetectionReset");
  EXPECT_EQ(set(ePropLiveliness, 2), 0x10000017U);
  EXPECT_THAT(last_text(), HasSubstr("FakeFingerDetectionReset"));
  EXPECT_EQ(get(ePropLiveliness), 0U);
}

TEST_F(FakeFinger, OnceTheDetectorIsThereDetectionCanBeTurnedOn) {
  libraries.make_absent(kDetector);
  EXPECT_EQ(set(ePropLiveliness, 1), 0x10000017U);
  libraries.use_plain(kDetector);
  EXPECT_EQ(set(ePropLiveliness, 1), 0U);
  EXPECT_EQ(get(ePropLiveliness), 100U);
}

TEST_F(FakeFinger, Code15BelowZeroIsAWhiteFrameAndCaptureGoesOn) {
  ASSERT_EQ(set(ePropLiveliness, 1), 0U);
  bench.set_faults(std::string(kScoreCall) + " calls 1 to 2 fails with -15");
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live, 4));
  stop();
  EXPECT_EQ(recorder.count(eEvent::Error), 0U);
  EXPECT_EQ(events, 0);
}

TEST_F(FakeFinger, AnyOtherCodeOfTheDetectorEndsTheCapture) {
  ASSERT_EQ(set(ePropLiveliness, 1), 0U);
  bench.set_faults(std::string(kScoreCall) + " call 2 fails with -16");
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Stop));
  EXPECT_EQ(recorder.count(eEvent::Live), 1U);
  EXPECT_EQ(recorder.count(eEvent::Error), 1U);
}

// ---- during capture

TEST_F(FakeFinger, EventsComeOnTheWorkerBeforeTheirFrame) {
  ASSERT_EQ(set(ePropLiveliness, 1), 0U);
  lay_down_fake_finger();
  std::vector<int> events_at_frame;
  recorder.inside = [&](const Event& event) {
    if (event.kind == eEvent::Live) {
      events_at_frame.push_back(events);
    }
  };
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live, 3));
  stop();
  EXPECT_EQ(thread, recorder.of(eEvent::Live).front().thread);
  for (std::size_t frame = 0; frame < events_at_frame.size(); ++frame) {
    EXPECT_EQ(events_at_frame[frame], static_cast<int>(frame) + 1);
  }
}

TEST_F(FakeFinger, ThePathChangesFromOneFrameToTheNextWhenDetectionIsTurnedOnAndOffInCapture) {
  std::vector<unsigned int> scored;  // frames scored by the time of each frame
  recorder.inside = [&](const Event& event) {
    if (event.kind == eEvent::Live) {
      scored.push_back(bench.count(kScoreCall));
      if (scored.size() == 2) {
        EXPECT_EQ(set(ePropLiveliness, 1), 0U);
      } else if (scored.size() == 5) {
        EXPECT_EQ(set(ePropLiveliness, 0), 0U);
      }
    }
  };
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live, 7));
  stop();
  scored.resize(7);
  EXPECT_THAT(scored, ::testing::ElementsAre(0, 0, 1, 2, 3, 3, 3));
  EXPECT_EQ(recorder.count(eEvent::Error), 0U);
}

TEST_F(FakeFinger, AnotherClientThreadMayTurnDetectionOnAndOffAllTheTime) {
  bench.record(false);
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live));
  for (unsigned int round = 0; round < 6; ++round) {
    EXPECT_EQ(set(ePropLiveliness, round % 3), 0U);
    EXPECT_EQ(get(ePropLiveliness), round % 3 == 0 ? 0U : 100U);
    ASSERT_TRUE(recorder.wait_for_more(eEvent::Live));
  }
  stop();
  EXPECT_EQ(recorder.count(eEvent::Error), 0U);
}

TEST_F(FakeFinger, AFakeFingerInPlainModeRaisesTheEventAndGivesItsFingerImages) {
  ASSERT_EQ(set(ePropLiveliness, 1), 0U);
  lay_down_fake_finger();
  ASSERT_EQ(start(eCapturePlain), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Finger));
  stop();
  EXPECT_GT(events, 0);
}

}  // namespace
}  // namespace Osv::client
