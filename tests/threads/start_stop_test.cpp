#include <algorithm>
#include <thread>
#include <tuple>

#include "client/joining.h"
#include "threads/captures.h"
#include "threads/effort.h"

namespace Osv::threads {
namespace {

using client::Joining;

constexpr unsigned long kRefusedInside = 0x10000041;
constexpr unsigned long kStillStarted = 0x1000004D;
constexpr int kFrames[] = {0, 1, 2, 3, 5, 8, 89};

/// A fault in a frame call. Call 1 shapes the image, call 2 is the first live image.
std::string frame_call(const std::string& calls, const std::string& effect) {
  return kFrameCall + (" " + calls) + " " + effect;
}

class StartStop;

/// A way in which a capture of some frames is stopped.
struct Ending {
  const char* name;
  const char* next_frame;  ///< fault of the frame call behind the last frame, null for none
  bool inside;             ///< a stop is tried inside the callback of the last frame, or of start
  void (StartStop::*end)(CaptureRecord& record, int frames);
};

class StartStop : public Captures,
                  public ::testing::WithParamInterface<std::tuple<eCaptureModeIDs, Ending>> {
 public:
  void stop_and_stop_the_idle_channel(CaptureRecord& record, int frames) {
    EXPECT_TRUE(record.wait_for(eEvent::Live, frames));
    stop_at_any_time(record);
    stop_at_any_time(record);
  }

  void stop_in_flight(CaptureRecord& record, int frames) {
    bench.wait_until_blocked(kFrameCall);
    const Joining joining;
    std::thread releasing([&] {
      EXPECT_TRUE(joining.await());
      bench.release();
    });
    stop_at_any_time(record);
    releasing.join();
    EXPECT_EQ(record.count(eEvent::Live), frames);
  }

  void stop_refused_inside(CaptureRecord& record, int frames) {
    EXPECT_TRUE(record.wait_for(eEvent::Live, frames + 1));
    EXPECT_EQ(result_inside, kRefusedInside);
    stop_at_any_time(record);
  }

  void stop_frozen(CaptureRecord& record, int frames) {
    EXPECT_TRUE(record.wait_for(eEvent::Live, frames));
    dawdle();
    sleeps.forget();
    EXPECT_EQ(grabber->Freeze(kChannel, true), 0U);
    EXPECT_TRUE(await_freeze_polls(1));
    stop_at_any_time(record);
    EXPECT_EQ(grabber->Freeze(kChannel, false), 0U);
  }

  void stop_after_an_error(CaptureRecord& record, int frames) {
    EXPECT_TRUE(record.wait_for(eEvent::Error, 1));
    dawdle();
    EXPECT_EQ(start_into(record, eCaptureLive), kStillStarted);
    stop_at_any_time(record);
    EXPECT_EQ(record.count(eEvent::Live), frames);
    EXPECT_EQ(record.count(eEvent::Error), 1);
  }

  /// On two threads at once: neither returns before the worker has ended.
  void stop_twice(CaptureRecord& record, int frames) {
    EXPECT_TRUE(record.wait_for(eEvent::Live, frames));
    std::thread other([&] {
      EXPECT_EQ(stop(), 0U);
      record.close();
    });
    stop_at_any_time(record);
    other.join();
  }

 protected:
  void capture(int frames) {
    const auto& [mode, ending] = GetParam();
    bench.set_faults(faults(frames, ending.next_frame));
    CaptureRecord& record = records.emplace_back();
    if (ending.inside) {
      record.inside = [this, frames](eEvent kind, int number) {
        stop_inside(kind, number, frames);
      };
    }
    ASSERT_EQ(start_into(record, mode), 0U);
    (this->*ending.end)(record, frames);
    EXPECT_EQ(record.complaint(), "");
  }

 private:
  /// Frames behind the first one repeat it, which is quicker than taking them.
  static std::string faults(int frames, const char* next_frame) {
    const std::string repeating = frame_call("from call 3 on", "fails with 0x20000001");
    return next_frame == nullptr
               ? repeating
               : repeating + ";" + frame_call("call " + std::to_string(frames + 2), next_frame);
  }

  void stop_inside(eEvent kind, int number, int frames) {
    if (kind == (frames == 0 ? eEvent::Start : eEvent::Live) && number == std::max(frames, 1)) {
      result_inside = stop();
    }
  }

  std::atomic<unsigned long> result_inside = 0;
};

TEST_P(StartStop, BringsStartAndStopOrNeitherAndNothingBehindTheClientsStop) {
  const int delays = effort("HVK3_DELAYS", 20, 1);
  for (const int frames : kFrames) {
    for (int delay = 0; delay < delays && !HasFailure(); ++delay) {
      SCOPED_TRACE(std::to_string(frames) + " frames, delay " + std::to_string(delay));
      capture(frames);
    }
  }
}

const Ending kEndings[] = {
    {"Idle", nullptr, false, &StartStop::stop_and_stop_the_idle_channel},
    {"InFlight", "blocks until told", false, &StartStop::stop_in_flight},
    {"FromACallback", nullptr, true, &StartStop::stop_refused_inside},
    {"Frozen", nullptr, false, &StartStop::stop_frozen},
    {"AfterAnError", "fails with 1460", false, &StartStop::stop_after_an_error},
    {"Twice", nullptr, false, &StartStop::stop_twice},
};

std::string name_of(const ::testing::TestParamInfo<StartStop::ParamType>& row) {
  const auto& [mode, ending] = row.param;
  return std::string(mode == eCaptureLive ? "Live" : "Plain") + ending.name;
}

INSTANTIATE_TEST_SUITE_P(Modes, StartStop,
                         ::testing::Combine(::testing::Values(eCaptureLive, eCapturePlain),
                                            ::testing::ValuesIn(kEndings)),
                         name_of);

/// Between start and stop hardly any time passes.
class QuickPairs : public Captures {
 protected:
  QuickPairs() { dawdle = Dawdler(815, 13); }
};

TEST_F(QuickPairs, OfStartAndStopBringBothCallbacksOrNeither) {
  const int pairs = effort("HVK3_PAIRS", 400, 20);
  for (int pair = 0; pair < pairs && !HasFailure(); ++pair) {
    CaptureRecord& record = records.emplace_back();
    ASSERT_EQ(start_into(record, pair % 2 == 0 ? eCaptureLive : eCapturePlain), 0U);
    stop_at_any_time(record);
    EXPECT_EQ(record.complaint(), "") << "pair " << pair;
  }
}

}  // namespace
}  // namespace Osv::threads
