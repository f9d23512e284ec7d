#include "client/client_fixture.h"

namespace Osv::client {
namespace {

using ::testing::ElementsAre;

using Freezing = ClientTest;

TEST_F(Freezing, TheFrameBeingFetchedIsStillDeliveredAndNoOtherIs) {
  capture_live_up_to_frame_call(3);  // one frame has been delivered
  EXPECT_EQ(grabber->Freeze(kChannel, true), 0U);
  bench.release();
  ASSERT_TRUE(await_freeze_polls(3));
  EXPECT_EQ(stop(), 0U);
  EXPECT_THAT(recorder.kinds(),
              ElementsAre(eEvent::Start, eEvent::Live, eEvent::Live, eEvent::Stop));
  EXPECT_EQ(bench.count(kFrameCall), 3U);
}

TEST_F(Freezing, CaptureGoesOnAfterwards) {
  capture_live_up_to_frame_call(3);
  grabber->Freeze(kChannel, true);
  bench.release();
  ASSERT_TRUE(await_freeze_polls(2));
  EXPECT_EQ(recorder.count(eEvent::Live), 2U);
  EXPECT_EQ(grabber->Freeze(kChannel, false), 0U);
  EXPECT_TRUE(recorder.wait_for(eEvent::Live, 5));
  EXPECT_EQ(recorder.count(eEvent::Start), 1U);
}

TEST_F(Freezing, SetWhileIdleItStaysInForceForTheNextCaptures) {
  EXPECT_EQ(grabber->Freeze(kChannel, true), 0U);
  for (int i = 0; i < 2; ++i) {
    recorder.clear();
    sleeps.forget();
    ASSERT_EQ(start(eCaptureLive), 0U);
    ASSERT_TRUE(await_freeze_polls(2));
    EXPECT_EQ(stop(), 0U);
    EXPECT_THAT(recorder.kinds(), ElementsAre(eEvent::Start, eEvent::Stop));
  }
  EXPECT_EQ(bench.count(kFrameCall), 0U);
}

TEST_F(Freezing, ClearedDuringACaptureThatBeganFrozenItLetsFramesCome) {
  grabber->Freeze(kChannel, true);
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(await_freeze_polls(1));
  grabber->Freeze(kChannel, false);
  EXPECT_TRUE(recorder.wait_for(eEvent::Live, 2));
}

TEST_F(Freezing, AFrozenCaptureStillAnswersASnap) {
  grabber->Freeze(kChannel, true);
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(await_freeze_polls(1));
  EXPECT_FALSE(snap().empty());
  EXPECT_EQ(stop(), 0U);
  EXPECT_EQ(recorder.count(eEvent::Live), 0U);
}

}  // namespace
}  // namespace Osv::client
