#include <future>
#include <map>
#include <sstream>

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
    const Caller caller{plugin, *grabber, &CaptureRecord::on_start, &CaptureRecord::on_stop};
    for (const Operation& operation : operations()) {
      if (!left_out(operation)) {
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
  bool leave_out_lifecycle = false;

 private:
  bool left_out(const Operation& operation) const {
    return leave_out_lifecycle && operation.owner == eOwner::OneThread;
  }

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

  static void on_event(int /*handle*/, unsigned int /*channel*/, eFGs /*kind*/,
                       unsigned int /*type*/, void* user) {
    static_cast<ReentrancyOfEvents*>(user)->call_all();
  }
};

TEST_F(ReentrancyOfEvents, OnTheWorkerEveryOperationWorksOrGivesItsNumber) {
  CaptureRecord& record = records.emplace_back();
  ASSERT_EQ(start_into(record, eCaptureLive), 0U);
  wait();
  expect_all_as_listed();
  expect_capture_goes_on(record);
}

// What starts, stops or ends is not for this callback, which runs on a thread of the client.
TEST_F(ReentrancyOfEvents, InTheMidstOfASnapEveryOtherOperationWorksOrGivesItsNumber) {
  leave_out_lifecycle = true;
  EXPECT_FALSE(snap().empty());
  wait();
  expect_all_as_listed();
}

}  // namespace
}  // namespace Osv::threads
