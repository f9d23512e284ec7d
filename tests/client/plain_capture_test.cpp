#include "client/client_fixture.h"

namespace Osv::client {
namespace {

using PlainCapture = ClientTest;

TEST_F(PlainCapture, ASettledFingerIsDeliveredAsAnImageOfType1) {
  bench.set_timeline(simulator::Timeline::settled_finger());
  ASSERT_EQ(start(eCapturePlain), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Finger));
  stop();
  const Event finger = recorder.of(eEvent::Finger).front();
  EXPECT_EQ(finger.type, 1);
  EXPECT_EQ(finger.handle, kHandle);
  EXPECT_EQ(finger.channel, kChannel);
}

TEST_F(PlainCapture, AFingerThatComesIsDeliveredOnceItTouches) {
  bench.set_timeline({3, 4, 1, 0, false});
  ASSERT_EQ(start(eCapturePlain), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Finger));
  stop();
  const Events all = recorder.all();
  ASSERT_GE(all.size(), 3U);
  EXPECT_EQ(all[1].kind, eEvent::Live);
  EXPECT_EQ(all[2].kind, eEvent::Live);  // the platen was still empty in the first frame
}

TEST_F(PlainCapture, TheLiveImageOfAPassComesBeforeItsFingerImageAndShowsTheSame) {
  bench.set_timeline(simulator::Timeline::settled_finger());
  recorder.keep_images();
  ASSERT_EQ(start(eCapturePlain), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Finger, 3));
  stop();
  const Events all = recorder.all();
  for (std::size_t i = 1; i < all.size(); ++i) {
    if (all[i].kind == eEvent::Finger) {
      EXPECT_EQ(all[i - 1].kind, eEvent::Live);
      EXPECT_TRUE(all[i - 1].image == all[i].image);
      EXPECT_NE(all[i - 1].block, all[i].block);
    }
  }
}

TEST_F(PlainCapture, AnEmptyPlatenGivesLiveImagesOnly) {
  ASSERT_EQ(start(eCapturePlain), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live, 5));
  stop();
  EXPECT_EQ(recorder.count(eEvent::Finger), 0U);
}

TEST_F(PlainCapture, AFingerIsDeliveredAgainAndAgainWhileItLies) {
  bench.set_timeline(simulator::Timeline::settled_finger());
  ASSERT_EQ(start(eCapturePlain), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Finger, 4));
  stop();
  EXPECT_GE(recorder.count(eEvent::Live), recorder.count(eEvent::Finger));
}

TEST_F(PlainCapture, ModesThatAreNotOfferedAreRefusedAndStartNothing) {
  for (const unsigned int mode : {2U, 3U, 4U, 5U, 77U}) {
    EXPECT_EQ(start(static_cast<eCaptureModeIDs>(mode)), 0x1000000AU);
    EXPECT_EQ(last_text(), "The detection ID bad or frame grabber does not support this detection");
  }
  EXPECT_EQ(bench.count("ftrScanGetInterfaces"), 0U);
  EXPECT_EQ(stop(), 0U);
  EXPECT_TRUE(recorder.all().empty());
}

}  // namespace
}  // namespace Osv::client
