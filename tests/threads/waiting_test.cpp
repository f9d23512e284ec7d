#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <future>

#include "threads/captures.h"
#include "threads/operations.h"

namespace Osv::threads {
namespace {

/// What waits for a worker, and what does not.
class Waiting : public Captures {
 protected:
  /// The result of an operation that another thread calls.
  std::future<unsigned long> call(const Operation& operation) {
    return std::async(std::launch::async, [this, &operation] {
      const Caller caller{plugin, *grabber, &CaptureRecord::on_start, &CaptureRecord::on_stop};
      return operation.call(caller);
    });
  }

  /// Captures up to a call of this function by the worker, which is then blocked.
  CaptureRecord& capture_up_to(const std::string& function) {
    CaptureRecord& record = records.emplace_back();
    bench.set_faults(function + " call 3 blocks until told");
    EXPECT_EQ(start_into(record, eCaptureLive), 0U);
    bench.wait_until_blocked(function);
    return record;
  }
};

TEST_F(Waiting, WhileAFrameIsFetchedNoOperationWaitsThatTakesNoLockOfTheDriver) {
  CaptureRecord& record = capture_up_to(kFrameCall);
  for (const Operation& operation : operations()) {
    if (operation.waits == eWaitsFor::Nothing) {
      std::future<unsigned long> result = call(operation);
      const bool in_time = result.wait_for(std::chrono::seconds(20)) == std::future_status::ready;
      EXPECT_TRUE(in_time) << operation.name;
      if (!in_time) {
        bench.release();
      }
      EXPECT_EQ(result.get(), operation.result) << operation.name;
    }
  }
  bench.release();
  stop_at_once(record);
}

using WaitingDeathTest = Waiting;

// As it is documented: the stop waits for the callback, which waits for the stop.
TEST_F(WaitingDeathTest, ACallbackThatWaitsForTheStopOfItsOwnCaptureWaitsForEver) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto stop_while_a_callback_waits_for_it = [this] {
    std::promise<void> inside;
    std::promise<void> stopped;
    CaptureRecord& record = records.emplace_back();
    record.inside = [&](eEvent kind, int number) {
      if (kind == eEvent::Live && number == 1) {
        inside.set_value();
        stopped.get_future().wait();
      }
    };
    start_into(record, eCaptureLive);
    inside.get_future().wait();
    std::fputs("the callback waits", stderr);
    ::alarm(1);
    stop();
    stopped.set_value();
    std::fputs(" and the stop has returned", stderr);
  };
  EXPECT_EXIT(stop_while_a_callback_waits_for_it(), ::testing::KilledBySignal(SIGALRM),
              "the callback waits$");
}

}  // namespace
}  // namespace Osv::threads
