#include <gtest/gtest.h>

#include <array>
#include <future>
#include <string>
#include <thread>

#include "driver/driver_fixture.h"
#include "driver/support/mutex_watch.h"

namespace Osv::lx {
namespace {

using testing_support::is_held;
using utilities::ClSimpleBitmap;

/// An operation, and the call of a closed library at which it is looked at.
struct Moment {
  const char* name;
  const char* function;
  int call;
  void (*before)(Driver& driver, ClSimpleBitmap& bitmap);
  void (*run)(Driver& driver, ClSimpleBitmap& bitmap);
};

void on_a_fresh_driver(Driver& /*driver*/, ClSimpleBitmap& /*bitmap*/) {}

void when_prepared(Driver& driver, ClSimpleBitmap& bitmap) {
  driver.SetActiveChannel(driver.channel(), bitmap);
}

void when_scoring(Driver& driver, ClSimpleBitmap& bitmap) {
  driver.m_pLiveDetection->Init();
  driver.m_pLiveDetection->SetFakeScore(1);
  when_prepared(driver, bitmap);
}

void prepare(Driver& driver, ClSimpleBitmap& bitmap) {
  driver.SetActiveChannel(driver.channel(), bitmap);
}

void take_a_frame(Driver& driver, ClSimpleBitmap& bitmap) {
  driver.GetLiveBitmap(driver.channel(), bitmap);
}

void describe(Driver& driver, ClSimpleBitmap& /*bitmap*/) {
  std::array<char, 256> text{};
  unsigned long size = text.size();
  EXPECT_EQ(driver.GetSDKInfo(text.data(), size), 0UL);
}

void list_scanners(Driver& driver, ClSimpleBitmap& /*bitmap*/) {
  unsigned long count = 0;
  EXPECT_EQ(driver.AvailableScanners(nullptr, count), 17UL);
}

void open_scanner(Driver& driver, ClSimpleBitmap& /*bitmap*/) {
  EXPECT_EQ(driver.InitializeScanner(), 0UL);
}

void choose_scanner(Driver& driver, ClSimpleBitmap& /*bitmap*/) {
  EXPECT_EQ(driver.SetActiveScanner(0), 0UL);
}

void read_description(Driver& driver, ClSimpleBitmap& /*bitmap*/) {
  EXPECT_EQ(driver.ReadSDKInfo(), 0UL);
}

void measure(Driver& driver, ClSimpleBitmap& /*bitmap*/) {
  double level = 0;
  EXPECT_EQ(driver.ContaminationDetection(1, &level), 0UL);
}

/// Runs an operation on a thread of its own as far as the moment, and to its end when it is told.
class DriverLocks : public DriverFixture, public ::testing::WithParamInterface<Moment> {
 protected:
  DriverLocks() {
    const Moment& moment = GetParam();
    bench.set_timeline(simulator::Timeline::settled_finger());
    moment.before(driver, bitmap);
    bench.set_faults(std::string(moment.function) + " call " + std::to_string(moment.call) +
                     " blocks until told");
    thread = std::thread([this] { GetParam().run(driver, bitmap); });
    bench.wait_until_blocked(moment.function);
  }

  ~DriverLocks() override { go_on(); }

  void go_on() {
    bench.release();
    if (thread.joinable()) {
      thread.join();
    }
  }

  bool locked() { return is_held(driver.m_cLock); }

  ClSimpleBitmap bitmap;
  std::thread thread;
};

using LockingOperations = DriverLocks;

TEST_P(LockingOperations, HoldTheDriversLockAtThisMomentAndNotAfterwards) {
  EXPECT_TRUE(locked());
  go_on();
  EXPECT_FALSE(locked());
}

constexpr char kFetch[] = "ftrScanGetImageByVariableDose";

// The first and the last call that each of them makes.
const Moment kLocking[] = {
    {"APlainFrameAsItIsFetched", kFetch, 1, when_prepared, take_a_frame},
    {"APlainFrameAsItIsCorrected", "Calibrate", 1, when_prepared, take_a_frame},
    {"AScoredFrameAsItsSizeIsRead", "ftrScanGetImageSize", 1, when_scoring, take_a_frame},
    {"AScoredFrameAsItPutsTheOptionBack", "CalibrateSetOption", 3, when_scoring, take_a_frame},
    {"AFirstFrameAsTheScannerIsOpened", "ftrScanGetInterfaces", 1, on_a_fresh_driver, take_a_frame},
    {"AFirstFrameAsItIsCorrected", "Calibrate", 3, on_a_fresh_driver, take_a_frame},
    {"APreparationAsTheScannerIsOpened", "ftrScanGetInterfaces", 1, on_a_fresh_driver, prepare},
    {"APreparationAsItShapesTheBitmap", "Calibrate", 2, on_a_fresh_driver, prepare},
    {"ADescriptionAsTheScannerIsOpened", "ftrScanGetInterfaces", 1, on_a_fresh_driver, describe},
    {"ADescriptionAsTheVersionsAreRead", "ftrScanGetVersion", 1, on_a_fresh_driver, describe},
    {"AListAsTheInterfacesAreRead", "ftrScanGetInterfaces", 1, on_a_fresh_driver, list_scanners},
    {"AListAsTheDeviceIsClosed", "ftrScanCloseDevice", 1, on_a_fresh_driver, list_scanners},
    {"AMeasureAsTheScannerIsOpened", "ftrScanGetInterfaces", 1, on_a_fresh_driver, measure},
    {"AMeasureAsTheEngineLooks", "ContaminationDetection", 1, on_a_fresh_driver, measure},
};

INSTANTIATE_TEST_SUITE_P(OfTheDriver, LockingOperations, ::testing::ValuesIn(kLocking),
                         [](const auto& moment) { return moment.param.name; });

using FreeOperations = DriverLocks;

TEST_P(FreeOperations, LeaveTheDriversLockAlone) { EXPECT_FALSE(locked()); }

const Moment kFree[] = {
    {"AnOpening", "CalibrateSetData", 1, on_a_fresh_driver, open_scanner},
    {"AChoice", "ftrSetBaseInterface", 1, on_a_fresh_driver, choose_scanner},
    {"AReadingOfTheDescription", "ftrScanGetVersion", 1, on_a_fresh_driver, read_description},
};

INSTANTIATE_TEST_SUITE_P(OfTheDriver, FreeOperations, ::testing::ValuesIn(kFree),
                         [](const auto& moment) { return moment.param.name; });

/// A capture that is frozen from its start and looks at the driver's lock when it ends.
class LockAtTheEndOfCapture : public DriverFixture {
 protected:
  LockAtTheEndOfCapture() {
    driver.Freeze(1, true);  // a worker that fetches frames could wait for the lock for ever
    driver.SetCallbacks(1, &LockAtTheEndOfCapture::on_start, &LockAtTheEndOfCapture::on_stop);
    EXPECT_EQ(driver.StartCapture(1, 1, eCaptureLive, nullptr, nullptr, nullptr, nullptr, this),
              0UL);
    started.get_future().wait();  // a stop that overtakes the start has no callback
  }

  static void on_start(int /*handle*/, unsigned int /*channel*/, void* user) {
    static_cast<LockAtTheEndOfCapture*>(user)->started.set_value();
  }

  static void on_stop(int /*handle*/, unsigned int /*channel*/, void* user) {
    auto& self = *static_cast<LockAtTheEndOfCapture*>(user);
    self.ended = true;
    self.held = is_held(self.driver.m_cLock);
  }

  std::promise<void> started;
  bool ended = false;
  bool held = false;
};

TEST_F(LockAtTheEndOfCapture, IsHeldByTheFreeingOfTheDriverUntilTheWorkerHasEnded) {
  driver.FreeSDK();
  EXPECT_TRUE(ended);
  EXPECT_TRUE(held);
  EXPECT_FALSE(is_held(driver.m_cLock));
}

TEST_F(LockAtTheEndOfCapture, IsFreeWhenTheClientStops) {
  driver.StopCapture(1);
  EXPECT_TRUE(ended);
  EXPECT_FALSE(held);
}

TEST_F(LockAtTheEndOfCapture, IsFreeWhenAnotherScannerIsChosen) {
  bench.plug_in(5, {.serial = "HVK30005"});
  EXPECT_EQ(driver.SetActiveScanner(5), 0UL);
  EXPECT_TRUE(ended);
  EXPECT_FALSE(held);
}

}  // namespace
}  // namespace Osv::lx
