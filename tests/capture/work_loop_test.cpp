#include <boost/weak_ptr.hpp>
#include <new>
#include <stdexcept>

#include "capture/channel_bench.h"

namespace Osv::lx {
namespace {

using test::Client;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using utilities::ClSimpleBitmap;

struct WorkLoop : test::StillBench {
  /// Makes the nth fetch of a frame fail.
  template <typename Exception>
  void fail_in_frame(long number, const Exception& exception) {
    scanner.when("GetLiveBitmap", [this, number, exception](ClSimpleBitmap&) {
      if (journal.count("GetLiveBitmap") == number) {
        throw exception;
      }
    });
  }

  template <typename Exception>
  void fail_in(const std::string& operation, const Exception& exception) {
    scanner.when(operation, [exception](ClSimpleBitmap&) { throw exception; });
  }
};

TEST_F(WorkLoop, ACaptureGoesInTheRequiredOrder) {
  stop_after(2);
  EXPECT_EQ(capture(eCaptureLive), 0);
  EXPECT_THAT(journal.entries(),
              ElementsAre("start", "Lock", "InitializeSDK", "UnLock",                         //
                          "Lock", "SetActiveChannel", "StartLiveCapturing", "GetLiveBitmap",  //
                          "live", "UnLock", "wait 0",                                         //
                          "Lock", "GetLiveBitmap", "live", "UnLock", "wait 0",                //
                          "Lock", "StopLiveCapturing", "UninitializeSDK", "stop", "UnLock"));
}

TEST_F(WorkLoop, AStopThatOvertookTheThreadLeavesEverythingUntouched) {
  ask_to_stop();
  EXPECT_EQ(channel.Work(), 0);
  EXPECT_THAT(journal.entries(), IsEmpty());
}

TEST_F(WorkLoop, TheThreadIsTheChannelsWhileItWorksAndForgottenBeforeItEnds) {
  bool current = false;
  client.on_start = [&] {
    current = channel.IsCurrentThread();
    ask_to_stop();
  };
  start(eCaptureLive);
  channel.Work();
  EXPECT_TRUE(current);
  EXPECT_FALSE(channel.IsCurrentThread());
}

TEST_F(WorkLoop, AStopInTheStartCallbackEndsCaptureBeforeTheFirstFrame) {
  client.on_start = [this] { ask_to_stop(); };
  capture(eCaptureLive);
  EXPECT_THAT(journal.entries(),
              ElementsAre("start", "Lock", "InitializeSDK", "UnLock",  //
                          "Lock", "StopLiveCapturing", "UninitializeSDK", "stop", "UnLock"));
}

TEST_F(WorkLoop, EveryFrameComesInTheSameBlock) {
  std::vector<const unsigned char*> blocks;
  client.on_live = [&](const Client::Image& image) {
    blocks.push_back(image.pixels());
    if (blocks.size() == 3) {
      ask_to_stop();
    }
  };
  capture(eCaptureLive);
  EXPECT_THAT(blocks, testing::Each(channel.get_currrent_bitmap()->Pixel()));
}

TEST_F(WorkLoop, ADirtyScannerIsPreparedAgainInEachPass) {
  scanner.dirty = true;
  stop_after(3);
  capture(eCaptureLive);
  EXPECT_EQ(journal.count("SetActiveChannel"), 3);
  EXPECT_EQ(journal.count("StartLiveCapturing"), 3);
}

TEST_F(WorkLoop, AnEmptyBitmapIsPreparedAgainAndNeverShown) {
  scanner.shapes_bitmaps = false;
  on_wait = [this](int) {
    if (journal.count("wait 0") == 3) {
      ask_to_stop();
    }
  };
  capture(eCaptureLive);
  EXPECT_EQ(journal.count("SetActiveChannel"), 3);
  EXPECT_EQ(journal.count("live"), 0);
}

TEST_F(WorkLoop, EachCaptureBeginsWithAnEmptyBitmap) {
  stop_after(1);
  capture(eCaptureLive);
  stop_after(2);
  capture(eCaptureLive);
  EXPECT_EQ(journal.count("SetActiveChannel"), 2);
}

TEST_F(WorkLoop, TheFrameOfTheCaptureBeforeLivesUntilTheLoopHasEnded) {
  stop_after(1);
  capture(eCaptureLive);
  const boost::weak_ptr<ClSimpleBitmap> before = channel.get_capture_bitmap();
  bool in_loop = false;
  bool at_end = true;
  client.on_error = [&] { in_loop = !before.expired(); };
  fail_in("InitializeSDK", ClLXException("no", 7));
  scanner.when("StopLiveCapturing", [&](ClSimpleBitmap&) { at_end = !before.expired(); });
  ask_to_stop();
  capture(eCaptureLive);
  EXPECT_TRUE(in_loop);
  EXPECT_FALSE(at_end);
}

TEST_F(WorkLoop, StrategyAndBitmapOutliveTheirCapture) {
  stop_after(1);
  capture(eCapturePlain);
  EXPECT_EQ(channel.GetCaptureMode(), eCapturePlain);
  EXPECT_FALSE(channel.get_currrent_bitmap()->Empty());
}

TEST_F(WorkLoop, AFrameWhoseStopCameDuringTheFetchIsDropped) {
  scanner.when("GetLiveBitmap", [this](ClSimpleBitmap&) { ask_to_stop(); });
  capture(eCapturePlain);
  EXPECT_THAT(journal.entries(), Not(Contains("live")));
  EXPECT_THAT(journal.entries(), Not(Contains("finger 1")));
  EXPECT_EQ(journal.count("stop"), 1);
}

TEST_F(WorkLoop, TheModeIsReadAfreshInEachPass) {
  client.on_live = [this](const Client::Image&) { channel.SetDetection(eCapturePreview); };
  on_wait = [this](int) {
    if (journal.count("wait 0") == 3) {
      ask_to_stop();
    }
  };
  capture(eCaptureLive);
  EXPECT_EQ(journal.count("GetLiveBitmap"), 1);
}

TEST_F(WorkLoop, OnlyTheWorkersThreadIsAWorkerThread) {
  bool in_callback = false;
  client.on_live = [&](const Client::Image&) {
    in_callback = ClFrameGrabberChannel::IsWorkerThread();
    ask_to_stop();
  };
  capture(eCaptureLive);
  EXPECT_TRUE(in_callback);
  EXPECT_FALSE(ClFrameGrabberChannel::IsWorkerThread());
}

// Scanners that detect by themselves.

struct SelfDetection : WorkLoop {
  SelfDetection() {
    scanner.detects_itself = true;
    scanner.finds_finger = true;
    scanner.when("WaitForPlainFinger", [this](ClSimpleBitmap& bitmap) {
      bitmap.SetWhite();
      ask_to_stop();
    });
  }
};

TEST_F(SelfDetection, AFingerIsDeliveredAsItIsThoughAStopHasCome) {
  capture(eCapturePlain);
  EXPECT_THAT(from("WaitForPlainFinger"),
              ElementsAre("WaitForPlainFinger", "live", "finger 1", "UnLock", "wait 0",  //
                          "Lock", "StopLiveCapturing", "UninitializeSDK", "stop", "UnLock"));
}

TEST_F(SelfDetection, WithoutAFingerNothingIsDelivered) {
  scanner.finds_finger = false;
  capture(eCapturePlain);
  EXPECT_EQ(journal.count("live"), 0);
  EXPECT_EQ(journal.count("GetLiveBitmap"), 0);
}

TEST_F(SelfDetection, OtherModesFetchFramesAllTheSame) {
  stop_after(1);
  capture(eCaptureLive);
  EXPECT_EQ(journal.count("GetLiveBitmap"), 1);
  EXPECT_EQ(journal.count("WaitForPlainFinger"), 0);
}

// Triggered preview.

struct Preview : WorkLoop {
  Preview() {
    on_wait = [this](int) {
      if (journal.count("wait 0") == 2) {
        ask_to_stop();
      }
    };
  }
};

TEST_F(Preview, WithoutATriggerNothingIsFetched) {
  capture(eCapturePreview);
  EXPECT_THAT(from("StartLiveCapturing"),
              ElementsAre("StartLiveCapturing", "UnLock", "wait 0", "Lock", "UnLock", "wait 0",  //
                          "Lock", "StopLiveCapturing", "UninitializeSDK", "stop", "UnLock"));
}

TEST_F(Preview, ATriggeredImageIsShownOnce) {
  channel.m_bTrigger = true;
  capture(eCapturePreview);
  EXPECT_EQ(journal.count("TriggerImage"), 1);
  EXPECT_EQ(journal.count("live"), 1);
  EXPECT_FALSE(channel.m_bTrigger);
}

TEST_F(Preview, ATriggeredImageWhoseStopHasComeIsDropped) {
  channel.m_bTrigger = true;
  scanner.when("TriggerImage", [this](ClSimpleBitmap&) { ask_to_stop(); });
  capture(eCapturePreview);
  EXPECT_EQ(journal.count("live"), 0);
  EXPECT_FALSE(channel.m_bTrigger);
}

// Freezing.

struct Freezing : WorkLoop {
  /// Does something in the nth poll of a freeze.
  void at_poll(long number, std::function<void()> action) {
    on_wait = [this, number, action = std::move(action)](int) {
      if (journal.count("wait 100") == number) {
        action();
      }
    };
  }
  void freeze_after_first_frame() {
    client.on_live = [this](const Client::Image&) {
      channel.m_bFreeze = journal.count("live") == 1;
      if (journal.count("live") == 2) {
        ask_to_stop();
      }
    };
  }
};

TEST_F(Freezing, ItIsToldOnceHoweverLongItLastsAndUnfreezingFetchesInTheSamePass) {
  freeze_after_first_frame();
  at_poll(3, [this] { channel.m_bFreeze = false; });
  capture(eCaptureLive);
  EXPECT_THAT(from("live"), ElementsAre("live", "UnLock", "wait 0", "FreezeSDK true", "wait 100",
                                        "wait 100", "wait 100", "FreezeSDK false", "Lock",
                                        "GetLiveBitmap", "live", "UnLock", "wait 0", "Lock",
                                        "StopLiveCapturing", "UninitializeSDK", "stop", "UnLock"));
}

TEST_F(Freezing, AStopWhileFrozenEndsWithoutUnfreezing) {
  freeze_after_first_frame();
  at_poll(2, [this] { ask_to_stop(); });
  capture(eCaptureLive);
  EXPECT_EQ(journal.count("FreezeSDK false"), 0);
  EXPECT_EQ(journal.count("stop"), 1);
  EXPECT_TRUE(channel.IsFreezed());
}

TEST_F(Freezing, AFreezeSetWhileIdleHoldsForTheNextCapture) {
  channel.m_bFreeze = true;
  at_poll(1, [this] { ask_to_stop(); });
  capture(eCaptureLive);
  EXPECT_THAT(journal.entries(),
              ElementsAre("start", "Lock", "InitializeSDK", "UnLock", "FreezeSDK true", "wait 100",
                          "Lock", "StopLiveCapturing", "UninitializeSDK", "stop", "UnLock"));
}

TEST_F(Freezing, AFreezeThatComesInThePassThatUnfreezesIsToldAgain) {
  client.on_live = [this](const Client::Image&) {
    channel.m_bFreeze = true;
    if (journal.count("live") == 3) {
      ask_to_stop();
    }
  };
  on_wait = [this](int milliseconds) {
    channel.m_bFreeze = channel.m_bFreeze && milliseconds == 0;
  };
  capture(eCaptureLive);
  EXPECT_EQ(journal.count("FreezeSDK true"), 2);
  EXPECT_EQ(journal.count("FreezeSDK false"), 2);
}

// Warnings and failures.

TEST_F(WorkLoop, AWarningEndsItsPassWithoutAPauseAndCaptureGoesOn) {
  fail_in_frame(1, ClLXWarning("dirty platen", 5));
  stop_after(1);
  capture(eCaptureLive);
  EXPECT_THAT(from("GetLiveBitmap"),
              ElementsAre("GetLiveBitmap", "UnLock", "warning: dirty platen", "Lock",
                          "GetLiveBitmap", "live", "UnLock", "wait 0", "Lock", "StopLiveCapturing",
                          "UninitializeSDK", "stop", "UnLock"));
}

TEST_F(WorkLoop, AWarningWithoutACallbackIsPassedOver) {
  fail_in_frame(1, ClLXWarning("dirty platen", 5));
  client.on_start = [this] { channel.m_pfnWarning = nullptr; };
  stop_after(1);
  capture(eCaptureLive);
  EXPECT_EQ(journal.count("live"), 1);
}

TEST_F(WorkLoop, AWarningInThePassThatUnfreezesDoesNotUnfreezeTwice) {
  channel.m_bFreeze = true;
  on_wait = [this](int) { channel.m_bFreeze = false; };
  fail_in_frame(1, ClLXWarning("dirty platen", 5));
  stop_after(1);
  capture(eCaptureLive);
  EXPECT_EQ(journal.count("FreezeSDK false"), 1);
}

TEST_F(WorkLoop, AWarningOutsideAPassEndsCaptureAsAnError) {
  fail_in("InitializeSDK", ClLXWarning("dirty platen", 5));
  capture(eCaptureLive);
  EXPECT_EQ(journal.count("error: dirty platen error: 5"), 1);
  EXPECT_EQ(journal.count("live"), 0);
}

TEST_F(WorkLoop, AWarningFromFreezingEndsCaptureAsAnError) {
  channel.m_bFreeze = true;
  fail_in("FreezeSDK true", ClLXWarning("dirty platen", 5));
  capture(eCaptureLive);
  EXPECT_EQ(journal.count("error: dirty platen error: 5"), 1);
}

TEST_F(WorkLoop, AFailureInAFrameUnlocksGivesOneErrorAndThenTheStopCallback) {
  fail_in_frame(2, ClLXException("Capture failed.", 4711));
  capture(eCaptureLive);
  EXPECT_THAT(
      from("wait 0"),
      ElementsAre("wait 0", "Lock", "GetLiveBitmap", "UnLock", "error: Capture failed. error: 4711",
                  "Lock", "StopLiveCapturing", "UninitializeSDK", "stop", "UnLock"));
  EXPECT_TRUE(channel.m_bRunning);
}

TEST_F(WorkLoop, AFailedInitialisationTakesTheSameRoad) {
  fail_in("InitializeSDK", ClLXException("Failed to initialize KR9-scanner.", 7));
  capture(eCaptureLive);
  EXPECT_THAT(journal.entries(),
              ElementsAre("start", "Lock", "InitializeSDK", "UnLock",
                          "error: Failed to initialize KR9-scanner. error: 7", "Lock",
                          "StopLiveCapturing", "UninitializeSDK", "stop", "UnLock"));
}

TEST_F(WorkLoop, AnyOtherOfTheFamilyHasTheNumber1) {
  fail_in_frame(1, CXOtherException("engine failed", -15));
  capture(eCaptureLive);
  EXPECT_EQ(journal.count("error: engine failed error: 1"), 1);
}

TEST_F(WorkLoop, MemoryThatRanOutHasTheNumber1) {
  fail_in_frame(1, CXMemoryAllocException());
  capture(eCaptureLive);
  EXPECT_EQ(journal.count("error: memory allocation failed error: 1"), 1);
}

TEST_F(WorkLoop, AFailureInContextIsToldByItsMessageAlone) {
  fail_in_frame(1, utilities::MakeException<CXOtherException>("engine failed", 3));
  capture(eCaptureLive);
  EXPECT_EQ(journal.count("error: engine failed error: 1"), 1);
}

TEST_F(WorkLoop, AStandardExceptionHasTheNumber23) {
  fail_in_frame(1, std::runtime_error("out of luck"));
  capture(eCaptureLive);
  EXPECT_EQ(journal.count("error: out of luck error: 23"), 1);
}

TEST_F(WorkLoop, AnExceptionOfAnotherTypeUnlocksAndLeavesTheThread) {
  fail_in_frame(1, 42);
  EXPECT_THROW(capture(eCaptureLive), int);
  EXPECT_THAT(from("GetLiveBitmap"), ElementsAre("GetLiveBitmap", "UnLock"));
}

TEST_F(WorkLoop, AFailureAtTheEndUnlocksAndLeavesTheThread) {
  fail_in("StopLiveCapturing", ClLXException("no", 1));
  stop_after(1);
  EXPECT_THROW(capture(eCaptureLive), ClLXException);
  EXPECT_THAT(from("StopLiveCapturing"), ElementsAre("StopLiveCapturing", "UnLock"));
}

TEST_F(WorkLoop, AScannerThatCannotBeLeftUnlocksAndLeavesTheThreadWithoutAStopCallback) {
  fail_in("UninitializeSDK", ClLXException("no", 1));
  stop_after(1);
  EXPECT_THROW(capture(eCaptureLive), ClLXException);
  EXPECT_THAT(from("StopLiveCapturing"),
              ElementsAre("StopLiveCapturing", "UninitializeSDK", "UnLock"));
}

TEST_F(WorkLoop, AStopCallbackThatThrowsUnlocksAndLeavesTheThread) {
  client.on_stop = [] { throw std::runtime_error("client"); };
  stop_after(1);
  EXPECT_THROW(capture(eCaptureLive), std::runtime_error);
  EXPECT_THAT(from("UninitializeSDK"), ElementsAre("UninitializeSDK", "stop", "UnLock"));
  EXPECT_EQ(journal.count("error: client error: 23"), 0);
}

TEST_F(WorkLoop, AFailureOfUnLockIsAFailureLikeAnyOther) {
  scanner.when("UnLock", [this](ClSimpleBitmap&) {
    if (journal.count("UnLock") == 2) {
      throw ClLXException("stuck", 8);
    }
  });
  capture(eCaptureLive);
  EXPECT_EQ(journal.count("error: stuck error: 8"), 1);
  EXPECT_EQ(journal.count("stop"), 1);
}

TEST_F(WorkLoop, ACallbackThatThrowsMeetsTheSameHandlers) {
  client.on_start = [] { throw std::runtime_error("client"); };
  capture(eCaptureLive);
  EXPECT_THAT(journal.entries(),
              ElementsAre("start", "error: client error: 23", "Lock", "StopLiveCapturing",
                          "UninitializeSDK", "stop", "UnLock"));
}

}  // namespace
}  // namespace Osv::lx
