#include <atomic>
#include <future>

#include "client/client_fixture.h"
#include "client/joining.h"

namespace Osv::client {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr unsigned long kInvalidState = 0x10000041;

using CaptureCallbacks = ClientTest;

TEST_F(CaptureCallbacks, StartIsFirstAndStopIsLastAndEachComesOnce) {
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live, 3));
  stop();
  const std::vector<eEvent> kinds = recorder.kinds();
  EXPECT_EQ(kinds.front(), eEvent::Start);
  EXPECT_EQ(kinds.back(), eEvent::Stop);
  EXPECT_EQ(recorder.count(eEvent::Start), 1U);
  EXPECT_EQ(recorder.count(eEvent::Stop), 1U);
}

TEST_F(CaptureCallbacks, AStopAtOnceGivesBothOfThemOrNeither) {
  for (int i = 0; i < 20; ++i) {
    recorder.clear();
    ASSERT_EQ(start(eCaptureLive), 0U);
    ASSERT_EQ(stop(), 0U);
    const std::size_t starts = recorder.count(eEvent::Start);
    EXPECT_LE(starts, 1U);
    EXPECT_EQ(recorder.count(eEvent::Stop), starts);
  }
}

TEST_F(CaptureCallbacks, NothingComesOnceStopHasReturned) {
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live, 2));
  ASSERT_EQ(stop(), 0U);
  const std::size_t events = recorder.all().size();
  const unsigned int frames = bench.count(kFrameCall);
  snap();  // two frames of the client's own
  disconnect();
  EXPECT_EQ(recorder.all().size(), events);
  EXPECT_EQ(bench.count(kFrameCall), frames + 2);
}

TEST_F(CaptureCallbacks, AFrameThatWasBeingFetchedWhenTheStopCameIsDropped) {
  capture_live_up_to_frame_call(4);
  const Joining joining;
  std::future<unsigned long> stopping = std::async(std::launch::async, [&] { return stop(); });
  EXPECT_TRUE(joining.await());
  bench.release();
  EXPECT_EQ(stopping.get(), 0U);
  EXPECT_EQ(bench.count(kFrameCall), 4U);
  EXPECT_THAT(recorder.kinds(),
              ElementsAre(eEvent::Start, eEvent::Live, eEvent::Live, eEvent::Stop));
}

TEST_F(CaptureCallbacks, StartingDoesNotWaitForTheWorker) {
  std::promise<void> started;
  std::shared_future<void> wait = started.get_future().share();
  recorder.inside = [wait](const Event& event) {
    if (event.kind == eEvent::Start) {
      wait.wait();
    }
  };
  ASSERT_EQ(start(eCaptureLive), 0U);  // would never return if it waited
  started.set_value();
  EXPECT_TRUE(recorder.wait_for(eEvent::Live));
}

TEST_F(CaptureCallbacks, StoppingFromInsideACallbackIsRefusedAndCaptureGoesOn) {
  std::atomic<unsigned long> result = 0;
  recorder.inside = [&](const Event& event) {
    if (event.kind == eEvent::Live && result == 0) {
      result = stop();
    }
  };
  ASSERT_EQ(start(eCaptureLive), 0U);
  EXPECT_TRUE(recorder.wait_for(eEvent::Live, 5));
  EXPECT_EQ(result, kInvalidState);
  EXPECT_EQ(last_text(), "The scanner has invalid state.");
  EXPECT_EQ(stop(), 0U);
  EXPECT_EQ(recorder.count(eEvent::Stop), 1U);
}

TEST_F(CaptureCallbacks, ANewChoiceOfScannerFromInsideACallbackIsRefusedAndCaptureGoesOn) {
  simulator::Device another;
  another.serial = "HVK30002";
  bench.plug_in(5, another);
  std::atomic<unsigned long> result = 0;
  recorder.inside = [&](const Event& event) {
    if (event.kind == eEvent::Live && result == 0) {
      result = grabber->SetActiveDevice(5);
    }
  };
  ASSERT_EQ(start(eCaptureLive), 0U);
  EXPECT_TRUE(recorder.wait_for(eEvent::Live, 5));
  EXPECT_EQ(result, kInvalidState);
  EXPECT_EQ(last_text(), "The scanner has invalid state.");
}

TEST_F(CaptureCallbacks, StoppingInsideTheStopCallbackIsRefusedAfterAnError) {
  std::atomic<unsigned long> result = 0;
  recorder.inside = [&](const Event& event) {
    if (event.kind == eEvent::Stop) {
      result = stop();
    }
  };
  bench.set_faults(std::string(kFrameCall) + " call 3 fails with 1460");
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Stop));
  EXPECT_EQ(result, kInvalidState);
}

TEST_F(CaptureCallbacks, StoppingInsideTheStopCallbackSucceedsAfterTheClientsOwnStop) {
  std::atomic<unsigned long> result = 7;
  recorder.inside = [&](const Event& event) {
    if (event.kind == eEvent::Stop) {
      result = stop();
    }
  };
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live));
  EXPECT_EQ(stop(), 0U);
  EXPECT_EQ(result, 0U);
}

TEST_F(CaptureCallbacks, StartingTwiceIsRefusedWithAnEmptyTextAndCaptureGoesOn) {
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live));
  EXPECT_EQ(start(eCapturePlain, 9), 0x1000004DU);
  EXPECT_EQ(last_text(), "");
  EXPECT_TRUE(recorder.wait_for_more(eEvent::Live));
  stop();
  EXPECT_EQ(recorder.count(eEvent::Start), 1U);
  EXPECT_EQ(recorder.all().back().handle, kHandle);
}

TEST_F(CaptureCallbacks, StoppingAnIdleChannelSucceedsInSilence) {
  EXPECT_EQ(stop(), 0U);
  EXPECT_EQ(stop(), 0U);
  EXPECT_THAT(recorder.all(), IsEmpty());
}

/// A stop callback that a test puts in place of the recorder's.
void other_stop(int /*handle*/, unsigned int /*channel*/, void* user) {
  static_cast<Recorder*>(user)->on_warning(0, 0, "the other stop callback", user);
}

TEST_F(CaptureCallbacks, TheStopCallbackCanBeExchangedFromInsideTheStartCallback) {
  std::atomic<unsigned long> result = 7;
  recorder.inside = [&](const Event& event) {
    if (event.kind == eEvent::Start) {
      result = grabber->SetCallbacks(kChannel, &Recorder::on_start, &other_stop);
    }
  };
  ASSERT_EQ(start(eCaptureLive), 0U);
  ASSERT_TRUE(recorder.wait_for(eEvent::Live));
  stop();
  EXPECT_EQ(result, 0U);
  EXPECT_EQ(recorder.count(eEvent::Stop), 0U);
  EXPECT_EQ(recorder.all().back().text, "the other stop callback");
}

TEST_F(CaptureCallbacks, OtherOperationsWorkFromInsideACallback) {
  std::atomic<unsigned long> failures = 0;
  recorder.inside = [&](const Event& event) {
    if (event.kind == eEvent::Live) {
      unsigned long count = 8;
      std::vector<DeviceInfo> list(count);
      failures |= grabber->AvailableDevices(list.data(), count);
      failures |= grabber->SetFilter(kChannel, eFilterNone);
      failures |= snap().empty() ? 1UL : 0UL;
    }
  };
  ASSERT_EQ(start(eCaptureLive), 0U);
  EXPECT_TRUE(recorder.wait_for(eEvent::Live, 3));
  stop();
  EXPECT_EQ(failures, 0U);
  EXPECT_EQ(recorder.count(eEvent::Error), 0U);
}

TEST_F(CaptureCallbacks, DestroyingFromInsideACallbackDoesNothingAndIsLoggedAsAnError) {
  std::atomic<bool> done = false;
  recorder.inside = [&](const Event& event) {
    if (event.kind == eEvent::Live && !done) {
      plugin.destroy();
      done = true;
    }
  };
  ASSERT_EQ(start(eCaptureLive), 0U);
  EXPECT_TRUE(recorder.wait_for(eEvent::Live, 3));
  EXPECT_EQ(plugin.pointer("m_pFG"), grabber);
  EXPECT_EQ(stop(), 0U);
  EXPECT_THAT(journal("OsvLFLog"),
              ::testing::Contains(AllOf(::testing::HasSubstr("level 3"),
                                        ::testing::HasSubstr("DestroyFrameGrabber"))));
}

TEST_F(CaptureCallbacks, AFilterIsAcceptedDuringCapture) {
  ASSERT_EQ(start(eCaptureLive), 0U);
  EXPECT_EQ(grabber->SetFilter(kChannel, static_cast<eFilterIDs>(3)), 0x1000000BU);
  EXPECT_EQ(last_text(), "The filter ID bad or framegrabber does not support");
  EXPECT_TRUE(recorder.wait_for_more(eEvent::Live, 2));
}

}  // namespace
}  // namespace Osv::client
