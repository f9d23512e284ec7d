#include <future>
#include <latch>
#include <set>
#include <thread>

#include "capture/channel_bench.h"

namespace Osv::lx {
namespace {

using test::Client;
using test::Failure;
using test::failure_of;
using testing::ElementsAre;
using utilities::ClSimpleBitmap;

/// A bench with a real worker thread, whose waits give up the processor. The polls of a freeze are
/// in the journal.
struct ChannelThreads : test::ChannelBench<ClOstrevanHVK3Channel> {
  ~ChannelThreads() override { channel.StopCapture(); }

  test::WaitRecorder waits{[this](int milliseconds) {
    if (milliseconds != 0) {
      journal.add("wait " + std::to_string(milliseconds));
    }
  }};
};

TEST_F(ChannelThreads, AfterAStopNoCallbackComes) {
  start(eCaptureLive);
  ASSERT_TRUE(journal.await("live", 3));
  EXPECT_TRUE(channel.StopCapture());
  const auto entries = journal.entries();
  EXPECT_EQ(entries.at(entries.size() - 2), "stop");
  EXPECT_EQ(entries.back(), "UnLock");
}

TEST_F(ChannelThreads, EveryCallbackComesOnTheWorker) {
  std::set<std::thread::id> threads;
  bool all_on_worker = true;
  const auto check = [&] {
    threads.insert(std::this_thread::get_id());
    all_on_worker =
        all_on_worker && channel.IsCurrentThread() && ClFrameGrabberChannel::IsWorkerThread();
  };
  client.on_start = client.on_stop = client.on_error = client.on_warning = check;
  client.on_live = client.on_finger = [&](const Client::Image&) { check(); };
  scanner.when("GetLiveBitmap", [this](ClSimpleBitmap&) {
    if (journal.count("GetLiveBitmap") == 2) {
      throw ClLXWarning("dirty platen", 5);
    }
    if (journal.count("GetLiveBitmap") == 3) {
      throw ClLXException("unplugged", 2);
    }
  });
  start(eCapturePlain);
  ASSERT_TRUE(journal.await("stop"));
  channel.StopCapture();
  for (const char* const entry :
       {"start", "live", "finger 1", "warning: dirty platen", "error: unplugged error: 2"}) {
    EXPECT_EQ(journal.count(entry), 1) << entry;
  }
  EXPECT_TRUE(all_on_worker);
  EXPECT_EQ(threads.size(), 1U);
  EXPECT_EQ(threads.count(std::this_thread::get_id()), 0U);
}

TEST_F(ChannelThreads, OfTwoWorkersTheEarlierOneMayEndFirst) {
  test::Journal other_journal;
  Client other_client(other_journal);
  ClOstrevanHVK3Channel other;
  other.SetCallbacks(&Client::start, &Client::stop);
  other_client.on_live = [&](const Client::Image&) {
    other_journal.add(ClFrameGrabberChannel::IsWorkerThread() ? "on a worker" : "on none");
  };
  start(eCaptureLive);
  ASSERT_TRUE(journal.await("live"));
  other.StartCapture(kHandle, eCaptureLive, &Client::live, nullptr, nullptr, nullptr,
                     &other_client);
  ASSERT_TRUE(other_journal.await("live"));
  channel.StopCapture();
  ASSERT_TRUE(other_journal.await("on a worker", other_journal.count("on a worker") + 3));
  other.StopCapture();
  EXPECT_EQ(other_journal.count("on none"), 0);
}

TEST_F(ChannelThreads, AStopRightAfterTheStartGivesBothCallbacksOrNone) {
  for (int run = 0; run < 300; ++run) {
    start(eCaptureLive);
    channel.StopCapture();
    ASSERT_EQ(journal.count("start"), journal.count("stop"));
  }
}

TEST_F(ChannelThreads, AStopFromACallbackFailsAndCaptureGoesOn) {
  std::promise<int> number;
  client.on_live = [&](const Client::Image&) {
    if (journal.count("live") == 1) {
      number.set_value(failure_of([this] { channel.StopCapture(); }).first);
    }
  };
  start(eCaptureLive);
  EXPECT_EQ(number.get_future().get(), 65);
  EXPECT_TRUE(journal.await("live", 5));
}

TEST_F(ChannelThreads, AfterAFailureCaptureResumesOnlyAfterAStop) {
  scanner.when("InitializeSDK", [](ClSimpleBitmap&) { throw ClLXException("no", 9); });
  start(eCaptureLive);
  ASSERT_TRUE(journal.await("stop"));
  EXPECT_EQ(failure_of([this] { start(eCaptureLive); }), Failure(77, ""));
  EXPECT_TRUE(channel.StopCapture());
  scanner.when("InitializeSDK", nullptr);
  EXPECT_TRUE(start(eCaptureLive));
  EXPECT_TRUE(journal.await("live"));
}

TEST_F(ChannelThreads, AFreezeStopsTheFramesWithinOnePass) {
  std::latch fetching(1);
  std::latch frozen(1);
  scanner.when("GetLiveBitmap", [&](ClSimpleBitmap&) {
    if (journal.count("GetLiveBitmap") == 2) {
      fetching.count_down();
      frozen.wait();
    }
  });
  start(eCaptureLive);
  fetching.wait();
  channel.m_bFreeze = true;
  frozen.count_down();
  ASSERT_TRUE(journal.await("wait 100", 3));
  EXPECT_EQ(journal.count("GetLiveBitmap"), 2);
  EXPECT_EQ(journal.count("live"), 2) << "the frame being fetched is still delivered";
  EXPECT_EQ(journal.count("FreezeSDK true"), 1);
}

TEST_F(ChannelThreads, AStopEndsAFrozenCapture) {
  channel.m_bFreeze = true;
  start(eCaptureLive);
  ASSERT_TRUE(journal.await("wait 100", 2));
  EXPECT_TRUE(channel.StopCapture());
  EXPECT_EQ(journal.count("stop"), 1);
  EXPECT_EQ(journal.count("FreezeSDK false"), 0);
}

TEST_F(ChannelThreads, UnfreezingBringsTheFramesBack) {
  channel.m_bFreeze = true;
  start(eCaptureLive);
  ASSERT_TRUE(journal.await("FreezeSDK true"));
  EXPECT_EQ(journal.count("live"), 0);
  channel.m_bFreeze = false;
  EXPECT_TRUE(journal.await("live"));
  EXPECT_EQ(journal.count("FreezeSDK false"), 1);
}

TEST_F(ChannelThreads, ASecondStopWaitsForTheWorkerThatTheFirstIsStopping) {
  std::latch stopping(1);
  client.on_stop = [&] {
    stopping.wait();
    for (int turn = 0; turn < 1000; ++turn) {
      std::this_thread::yield();
    }
    journal.add("callback ends");
  };
  start(eCaptureLive);
  ASSERT_TRUE(journal.await("live"));
  std::thread first([this] { EXPECT_TRUE(channel.StopCapture()); });
  EXPECT_TRUE(journal.await("stop"));
  stopping.count_down();
  EXPECT_TRUE(channel.StopCapture());
  EXPECT_EQ(journal.count("callback ends"), 1);
  first.join();
}

TEST_F(ChannelThreads, AThreadThatCannotBeCreatedBringsNoCallbackAndAnotherStartWorks) {
  struct Huge : ClOstrevanHVK3Channel {
    unsigned long GetStackSize() const override { return stack_size; }
    unsigned long stack_size = 1UL << 60;
  } huge;
  const auto start_huge = [&] {
    return huge.StartCapture(1, eCaptureLive, &Client::live, nullptr, nullptr, nullptr, &client);
  };
  EXPECT_FALSE(start_huge());
  EXPECT_TRUE(huge.StopCapture());
  EXPECT_TRUE(journal.entries().empty());
  huge.stack_size = 0;
  EXPECT_TRUE(start_huge());
  EXPECT_TRUE(journal.await("live"));
  huge.StopCapture();
}

TEST_F(ChannelThreads, SettersMayRunDuringCapture) {
  scanner.dirty = true;
  scanner.when("SetActiveChannel", [this](ClSimpleBitmap&) {
    channel.ChangeCamera([](ClLXCamera& camera) { camera.put_DPI(500, 500); });
  });
  start(eCapturePlain);
  for (int run = 0; run < 200; ++run) {
    channel.SetCamera(eCamera5, eColorModeGray);
    channel.SetFilter(eFilterIDs{1});
    channel.SetCallbacks(&Client::start, &Client::stop);
    scanner.suppresses = run % 2 == 0;
    EXPECT_TRUE(channel.CheckCameraSet());
    EXPECT_FALSE(channel.IsFreezed());
  }
  EXPECT_TRUE(journal.await("live"));
}

// The start and stop callbacks.

TEST_F(ChannelThreads, CallbacksCanBeSetInsideTheStartCallback) {
  client.on_start = [this] { channel.SetCallbacks(&Client::start, nullptr); };
  start(eCaptureLive);
  ASSERT_TRUE(journal.await("live"));
  channel.StopCapture();
  EXPECT_EQ(journal.count("start"), 1);
  EXPECT_EQ(journal.count("stop"), 0);
}

TEST_F(ChannelThreads, SettingCallbacksWaitsForTheCallbackThatRuns) {
  std::latch setting(1);
  std::thread setter;
  client.on_start = [&] {
    setter = std::thread([&] {
      setting.count_down();
      channel.SetCallbacks(nullptr, nullptr);
      journal.add("set");
    });
    setting.wait();
    for (int turn = 0; turn < 1000; ++turn) {
      std::this_thread::yield();
    }
    journal.add("callback ends");
  };
  channel.m_Callbacks.OnStart(1, 1, &client);
  setter.join();
  EXPECT_THAT(journal.entries(), ElementsAre("start", "callback ends", "set"));
}

TEST_F(ChannelThreads, ACallbackThatThrowsLeavesTheCallbacksUnlocked) {
  client.on_start = [] { throw 1; };
  client.on_stop = [] { throw 2; };
  EXPECT_THROW(channel.m_Callbacks.OnStart(1, 1, &client), int);
  EXPECT_THROW(channel.m_Callbacks.OnStop(1, 1, &client), int);
  std::thread([this] { channel.SetCallbacks(nullptr, nullptr); }).join();
  channel.m_Callbacks.OnStart(1, 1, &client);
  EXPECT_EQ(journal.count("start"), 1);
}

}  // namespace
}  // namespace Osv::lx
