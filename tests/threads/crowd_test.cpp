#include <thread>

#include "threads/captures.h"
#include "threads/effort.h"
#include "threads/operations.h"

namespace Osv::threads {
namespace {

constexpr unsigned int kThreads = 8;

/// What goes wrong now and then. Not for ever: a call that fails a few times lets the next succeed.
constexpr const char* kFaults[] = {
    "ftrScanGetImageByVariableDose call 2 fails with 259",
    "ftrScanGetImageByVariableDose call 3 fails with 31",
    "ftrScanGetImageByVariableDose calls 2 to 5 fails with 121",
    "ftrScanGetImageByVariableDose call 1 fails with 1460",
    "ftrScanGetImageByVariableDose calls 1 to 4 fails with 4306",
    "ftrScanGetImageSize call 1 fails with 2",
    "ftrScanOpenDeviceOnInterface calls 1 to 2 gives a null handle",
    "ftrScanSetOptions call 1 fails with 0x20000004",
    "ftrScanSetOptions call 1 fails with 6",
    "ftrScanRestoreExtMemory call 2 fails with 31",
    "ftrSetBaseInterface call 1 fails with 2",
    "Calibrate call 2 fails with -5",
    "CalibrateSetData call 1 fails with -1",
    "CalibrateCreate call 1 gives a null handle",
    "CalibrateSetOption call 1 fails with -37",
    "FakeFingerDetectionEvaluateLiveliness call 1 fails with -15",
    "FakeFingerDetectionSetImage call 2 fails with -6",
    "FakeFingerDetectionCreateHandle call 1 fails with -1",
    "FakeFingerDetectionGetPropertyA calls 1 to 9 fails with -4",
};

/// Two scanners, a thread that captures and changes the scanner, and eight that call whatever else
/// there is. How much each of them does is counted; what comes of it is not looked at.
class Crowd : public Captures {
 protected:
  Crowd() {
    simulator::Device another;
    another.serial = "HVK30005";
    another.seed = 5;
    bench.plug_in(5, another);
    bench.list_from_base(true);
  }

  /// Calls operations at random.
  void call_at_random(unsigned int seed, int calls) {
    Dawdler random(seed);
    const Caller caller{plugin, *grabber, &CaptureRecord::on_start, &CaptureRecord::on_stop};
    const std::vector<Operation>& all = operations();
    while (calls > 0) {
      const Operation& operation = all[random.below(static_cast<unsigned int>(all.size()))];
      if (operation.owner == eOwner::Everybody) {
        operation.call(caller);
        random();
        --calls;
      }
    }
  }

  /// Starts, stops and chooses, in whatever order; callbacks call operations too.
  void capture_at_random(int captures) {
    constexpr unsigned long kChoices[] = {0, 5, 127};
    for (int i = 0; i < captures; ++i) {
      CaptureRecord& record = records.emplace_back();
      record.inside = [this, i](eEvent /*kind*/, int number) {
        if (number % 4 == 1) {
          call_at_random(static_cast<unsigned int>(i + number), 1);
        }
      };
      start_into(record, i % 2 == 0 ? eCaptureLive : eCapturePlain);
      dawdle();
      if (dawdle.below(2) == 0) {
        grabber->SetActiveDevice(kChoices[dawdle.below(std::size(kChoices))]);
      }
      stop_at_any_time(record);
    }
  }

  void go_wrong_at_random(int times) {
    Dawdler random(99);
    for (int i = 0; i < times; ++i) {
      const unsigned int interface = 5 * random.below(2);
      bench.unplug(interface);
      random();
      bench.plug_in_again(interface);
      bench.set_faults(kFaults[random.below(std::size(kFaults))]);
      random();
    }
    bench.clear_faults();
  }

  /// @param troubles how often something goes wrong meanwhile
  void run(int troubles) {
    const int calls = effort("HVK3_CALLS", 120, 30);
    std::vector<std::thread> threads;
    for (unsigned int number = 0; number < kThreads; ++number) {
      threads.emplace_back([this, number, calls] { call_at_random(number, calls); });
    }
    threads.emplace_back([this, troubles] { go_wrong_at_random(troubles); });
    capture_at_random(calls / 2);
    for (std::thread& thread : threads) {
      thread.join();
    }
  }

  int errors() const {
    int count = 0;
    for (const CaptureRecord& record : records) {
      count += record.count(eEvent::Error);
    }
    return count;
  }
};

TEST_F(Crowd, OfThreadsDisturbsNoCaptureAndLeavesTheScannerInOrder) {
  run(0);
  EXPECT_EQ(errors(), 0);
  EXPECT_FALSE(snap().empty());
}

TEST_F(Crowd, OfThreadsComesThroughFaultsAndUnplugging) {
  run(effort("HVK3_CALLS", 120, 30));
  grabber->SetActiveDevice(127);  // there is none: what was unplugged is forgotten
  EXPECT_FALSE(snap().empty());
}

}  // namespace
}  // namespace Osv::threads
