#include <algorithm>
#include <future>
#include <map>
#include <sstream>
#include <thread>

#include "threads/captures.h"
#include "threads/operations.h"

namespace Osv::threads {
namespace {

/// Results that differ from those of the list.
using Results = std::map<std::string, unsigned long>;

/// Calls every operation of the interface from inside one callback.
class Reentrancy : public Captures {
 protected:
  Reentrancy() {
    simulator::Device another;
    another.serial = "HVK30005";
    bench.plug_in(5, another);
  }

  /// Calls the operations, and notes those whose result is another than the list says. Inside a
  /// callback that one of them brings about it does nothing.
  void call_all() {
    if (m_bCalling.exchange(true)) {
      return;
    }
    const Caller caller{plugin, *grabber, &CaptureRecord::on_start, &CaptureRecord::on_stop,
                        &records.emplace_back()};
    for (const Operation& operation : operations()) {
      if (operation.name != left_out) {
        compare(operation.name, operation.call(caller), expected(operation));
      }
    }
    m_cCalled.set_value();
  }

  void call_all_inside(CaptureRecord& record, eEvent kind) {
    record.inside = [this, kind](eEvent came, int /*number*/) {
      if (came == kind) {
        call_all();
      }
    };
  }

  /// Starts a capture in which all operations are called from inside a kind of callback, and waits
  /// until they are through.
  CaptureRecord& capture_calling_inside(eEvent kind, eCaptureModeIDs mode = eCaptureLive) {
    CaptureRecord& record = records.emplace_back();
    call_all_inside(record, kind);
    EXPECT_EQ(start_into(record, mode), 0U);
    wait();
    return record;
  }

  void wait() {
    constexpr std::chrono::seconds kPatience{60};
    ASSERT_EQ(m_cCalled.get_future().wait_for(kPatience), std::future_status::ready);
  }

  void expect_all_as_listed() { EXPECT_EQ(m_cUnexpected.str(), ""); }

  /// Capture was not disturbed: it goes on, and ends when the client wants it.
  void expect_capture_goes_on(CaptureRecord& record) {
    EXPECT_TRUE(record.wait_for(eEvent::Live, record.count(eEvent::Live) + 2));
    EXPECT_EQ(record.count(eEvent::Error), 0);
    stop_at_once(record);
  }

  Results other_results;
  std::string left_out;  // an operation that is not called

 private:
  unsigned long expected(const Operation& operation) const {
    const auto other = other_results.find(operation.name);
    return other == other_results.end() ? operation.result : other->second;
  }

  void compare(const char* name, unsigned long result, unsigned long wanted) {
    if (result != wanted) {
      m_cUnexpected << name << ": " << std::hex << result << " and not " << wanted << '\n';
    }
  }

  std::atomic<bool> m_bCalling = false;
  std::promise<void> m_cCalled;
  std::ostringstream m_cUnexpected;  // the caller's until m_cCalled
};

TEST_F(Reentrancy, InsideTheStartCallbackEveryOperationWorksOrGivesItsNumber) {
  CaptureRecord& record = capture_calling_inside(eEvent::Start);
  expect_all_as_listed();
  expect_capture_goes_on(record);
}

TEST_F(Reentrancy, InsideTheLiveImageCallbackEveryOperationWorksOrGivesItsNumber) {
  CaptureRecord& record = capture_calling_inside(eEvent::Live);
  expect_all_as_listed();
  expect_capture_goes_on(record);
}

TEST_F(Reentrancy, InsideTheDetectedFingerCallbackEveryOperationWorksOrGivesItsNumber) {
  CaptureRecord& record = capture_calling_inside(eEvent::Finger, eCapturePlain);
  expect_all_as_listed();
  expect_capture_goes_on(record);
}

TEST_F(Reentrancy, InsideTheErrorCallbackEveryOperationWorksOrGivesItsNumber) {
  bench.set_faults(std::string(kFrameCall) + " call 3 fails with 1460");
  CaptureRecord& record = capture_calling_inside(eEvent::Error);
  expect_all_as_listed();
  EXPECT_TRUE(record.wait_for(eEvent::Stop, 1));
  stop_at_once(record);
}

TEST_F(Reentrancy, InsideTheStopCallbackAfterAnErrorEveryOperationWorksOrGivesItsNumber) {
  bench.set_faults(std::string(kFrameCall) + " call 3 fails with 1460");
  CaptureRecord& record = capture_calling_inside(eEvent::Stop);
  expect_all_as_listed();
  stop_at_once(record);
}

// What stops capture finds it stopped already, and goes on.
TEST_F(Reentrancy, InsideTheStopCallbackOfAStopEveryOperationWorksOrGivesItsNumber) {
  other_results = {{"StopCapture", 0}, {"SetActiveDevice 5", 0}};
  CaptureRecord& record = records.emplace_back();
  call_all_inside(record, eEvent::Stop);
  ASSERT_EQ(start_into(record, eCaptureLive), 0U);
  ASSERT_TRUE(record.wait_for(eEvent::Live, 1));
  stop_at_once(record);
  wait();
  expect_all_as_listed();
}

/// The same from inside the event of a finger that is judged to be a fake.
class ReentrancyOfEvents : public Reentrancy {
 protected:
  ReentrancyOfEvents() {
    EXPECT_EQ(grabber->SetFGProperty(ePropLiveliness, 1), 0U);
    EXPECT_EQ(grabber->SetFGProperty(ePropFakeDetection, 1000), 0U);
    EXPECT_EQ(grabber->EnableEvents(kHandle, 1, &ReentrancyOfEvents::on_event, this), 0U);
  }

  /// Inside the first event: of a capture of its own, or of a snap on the client's thread.
  std::function<void()> act;
  bool of_a_snap = false;

  /// The same inside the next event, of a frame within this one.
  void act_again(const std::function<void()>& next) {
    m_fnInner = next;
    m_bActed = false;
  }

 private:
  static void on_event(int /*handle*/, unsigned int /*channel*/, eFGs /*kind*/,
                       unsigned int /*type*/, void* user) {
    auto& self = *static_cast<ReentrancyOfEvents*>(user);
    const bool here = std::this_thread::get_id() == self.m_cClient;
    if (here == self.of_a_snap && !self.m_bActed.exchange(true)) {
      (self.m_fnInner == nullptr ? self.act : self.m_fnInner)();
    }
  }

  const std::thread::id m_cClient = std::this_thread::get_id();
  std::atomic<bool> m_bActed = false;
  std::function<void()> m_fnInner;
};

TEST_F(ReentrancyOfEvents, OnTheWorkerEveryOperationWorksOrGivesItsNumber) {
  act = [this] { call_all(); };
  CaptureRecord& record = records.emplace_back();
  ASSERT_EQ(start_into(record, eCaptureLive), 0U);
  wait();
  expect_all_as_listed();
  expect_capture_goes_on(record);
}

/// The calling thread is in the midst of an image, with the driver's lock held.
class InTheMidstOfASnap : public ReentrancyOfEvents {
 protected:
  InTheMidstOfASnap() { of_a_snap = true; }

  CaptureRecord& capture() { return capture_into(records.emplace_back()); }

  CaptureRecord& capture_into(CaptureRecord& record) {
    sleeps.forget();
    m_nFramesBefore = bench.count(kFrameCall);
    EXPECT_EQ(start_into(record, eCaptureLive), 0U);
    EXPECT_TRUE(record.wait_for(eEvent::Live, 1));
    return record;
  }

  /// Inside the event, if a capture is under way. The worker pauses behind each image, and then
  /// wants the lock for the next one. Of the frames since its start one has shaped its images, and
  /// two are of the snap.
  void await_worker_at_the_lock() {
    constexpr unsigned int kOthers = 3;
    constexpr int kTurns = 50;
    if (!records.empty()) {
      const unsigned int images = bench.count(kFrameCall) - m_nFramesBefore - kOthers;
      EXPECT_TRUE(sleeps.await_nanosleeps(0, 0, images));
      for (int turn = 0; turn < kTurns; ++turn) {
        std::this_thread::yield();  // the few steps from the pause to the lock
      }
    }
  }

  void call_all_but_the_end() {
    left_out = "DestroyFrameGrabber";
    act = [this] {
      await_worker_at_the_lock();
      call_all();
    };
    EXPECT_FALSE(snap().empty());
    wait();
    expect_all_as_listed();
  }

  /// Takes an image of which the frame grabber is destroyed in the midst, and gets another one.
  void destroy_in_the_midst() {
    act = [this] {
      await_worker_at_the_lock();
      plugin.destroy();
      EXPECT_EQ(plugin.pointer("m_pFG"), nullptr);
      std::for_each(records.begin(), records.end(), [](CaptureRecord& record) { record.close(); });
    };
    expect_gone_behind_an_image();
  }

  /// Takes an image, and gets another frame grabber behind it.
  void expect_gone_behind_an_image() {
    unsigned char* image = nullptr;
    EXPECT_EQ(grabber->GetImage(kChannel, &image), 0U);
    EXPECT_NE(image, nullptr);
    EXPECT_EQ(bench.census().scanner_handles, 0U);
    EXPECT_EQ(bench.census().engines, 0U);
    EXPECT_EQ(bench.census().detectors, 0U);
    connect();
    grabber->FreeImage(image);
  }

 private:
  unsigned int m_nFramesBefore = 0;  // the capture
};

TEST_F(InTheMidstOfASnap, EveryOperationWorksOrGivesItsNumber) {
  other_results = {{"StartCapture", 0}, {"StopCapture", 0}, {"SetActiveDevice 5", 0}};
  call_all_but_the_end();
}

TEST_F(InTheMidstOfASnap, EveryOperationWorksOrGivesItsNumberDuringCaptureToo) {
  other_results = {{"StopCapture", 0}, {"SetActiveDevice 5", 0}};
  CaptureRecord& record = capture();
  call_all_but_the_end();
  EXPECT_EQ(record.count(eEvent::Stop), 1);
}

TEST_F(InTheMidstOfASnap, ACaptureThatStartsGoesOnBehindIt) {
  CaptureRecord& record = records.emplace_back();
  act = [&] { EXPECT_EQ(start_into(record, eCaptureLive), 0U); };
  EXPECT_FALSE(snap().empty());
  EXPECT_TRUE(record.wait_for(eEvent::Live, 2));
  stop_at_once(record);
}

TEST_F(InTheMidstOfASnap, AStopIsFinal) {
  CaptureRecord& record = capture();
  act = [&] {
    await_worker_at_the_lock();
    stop_at_once(record);
  };
  EXPECT_FALSE(snap().empty());
  EXPECT_EQ(record.count(eEvent::Stop), 1);
}

TEST_F(InTheMidstOfASnap, AStopIsFinalAlsoInTheMidstOfASecondOne) {
  CaptureRecord& record = capture();
  act = [&] {
    await_worker_at_the_lock();
    act_again([&] { stop_at_once(record); });
    EXPECT_FALSE(snap().empty());
  };
  EXPECT_FALSE(snap().empty());
  EXPECT_EQ(record.count(eEvent::Stop), 1);
}

TEST_F(InTheMidstOfASnap, AnotherScannerCanBeChosenWhichEndsTheCapture) {
  CaptureRecord& record = capture();
  act = [&] {
    await_worker_at_the_lock();
    EXPECT_EQ(grabber->SetActiveDevice(5), 0U);
    record.close();
  };
  EXPECT_FALSE(snap().empty());
  EXPECT_EQ(record.count(eEvent::Stop), 1);
  EXPECT_FALSE(snap().empty());
}

TEST_F(InTheMidstOfASnap, TheFrameGrabberGoesWithTheImageInWhoseMidstItIsDestroyed) {
  destroy_in_the_midst();
  EXPECT_FALSE(snap().empty());
}

TEST_F(InTheMidstOfASnap, TheFrameGrabberGoesWithTheOuterImageWhenItIsDestroyedInTheMidstOfTwo) {
  act = [this] {
    act_again([this] { plugin.destroy(); });
    EXPECT_FALSE(snap().empty());
    EXPECT_EQ(plugin.pointer("m_pFG"), nullptr);
    EXPECT_EQ(bench.census().scanner_handles, 1U);
  };
  expect_gone_behind_an_image();
  EXPECT_FALSE(snap().empty());
}

TEST_F(InTheMidstOfASnap, ANewFrameGrabberCanBeGotInPlaceOfTheOneThatIsDestroyed) {
  lx::ClFramegrabber* const old = grabber;
  act = [this] {
    plugin.destroy();
    connect();
    EXPECT_EQ(grabber->EnableEvents(kHandle, 1, nullptr, nullptr), 0U);
  };
  EXPECT_FALSE(snap().empty());
  EXPECT_NE(grabber, old);
  EXPECT_FALSE(snap().empty());
}

TEST_F(InTheMidstOfASnap, DestroyingTheFrameGrabberEndsItsCaptureAtOnce) {
  CaptureRecord& record = capture();
  destroy_in_the_midst();
  EXPECT_EQ(record.count(eEvent::Stop), 1);
}

TEST_F(InTheMidstOfASnap, AFrameGrabberThatIsDestroyedStillTakesAnImageInItsLastCallback) {
  CaptureRecord& record = records.emplace_back();
  lx::ClFramegrabber* const destroyed = grabber;
  unsigned long result = ~0UL;
  record.inside = [&](eEvent kind, int /*number*/) {
    if (kind == eEvent::Stop) {
      unsigned char* image = nullptr;
      result = destroyed->GetImage(kChannel, &image);
      destroyed->FreeImage(image);
    }
  };
  capture_into(record);
  destroy_in_the_midst();
  EXPECT_EQ(result, 0U);
}

}  // namespace
}  // namespace Osv::threads
