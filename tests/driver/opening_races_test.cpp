#include <gtest/gtest.h>

#include <atomic>
#include <boost/make_shared.hpp>
#include <chrono>
#include <future>
#include <thread>

#include "driver/driver_fixture.h"
#include "driver/support/mutex_watch.h"
#include "driver/support/sized_unit.h"

namespace Osv::lx {
namespace {

using testing_support::BeforeLock;
using testing_support::go_as_far_as_locks_let;
using testing_support::system_mutex;
using utilities::ClSimpleBitmap;

CXMutex& scanner_lock(Driver& driver) {
  struct Access : ClFutronicBaseSDK {
    using ClFutronicBaseSDK::m_cScannerLock;
  };
  return driver.m_pScanner.get()->*(&Access::m_cScannerLock);
}

/// What takes a frame.
struct FrameTaker {
  const char* name;
  int fetch;  ///< which of its calls into the device is the one that fills a buffer
  bool scored;
  void (*run)(Driver& driver);
};

void take_a_frame(Driver& driver) {
  driver.GetLiveBitmap(driver.channel(), *driver.channel().get_currrent_bitmap());
}

void prepare(Driver& driver) {
  ClSimpleBitmap bitmap;
  EXPECT_EQ(driver.SetActiveChannel(driver.channel(), bitmap), 0UL);
}

void snap(Driver& driver) {
  unsigned char* block = nullptr;
  EXPECT_EQ(driver.Snap(1, &block), 0UL);
  const std::unique_ptr<unsigned char[]> image(block);
}

/// Between preparation and frame the other client may have closed the scanner and not yet opened
/// it.
void snap_meanwhile(Driver& driver) {
  try {
    snap(driver);
  } catch (const ClLXException& refusal) {
    EXPECT_STREQ(refusal.GetDescription(), "KR9 scanner. Scanner error: 0");
  }
}

void measure(Driver& driver) {
  double level = 0;
  EXPECT_EQ(driver.ContaminationDetection(1, &level), 0UL);
}

void snap_as_it_comes(Driver& driver) {
  ClSimpleBitmap bitmap;
  driver.SnapRefImage(bitmap);
}

/// A unit with small frames, and a worker's bitmap.
class SmallFrames : public DriverFixture {
 protected:
  SmallFrames() {
    SizedUnit::attached = &unit;
    libraries.use_file("libostrevancalibratesdk.so", SizedUnit::kEngine);
    open();
    SizedUnit::answer_for_the_scanner_of(driver);
    driver.channel().SetCurrentThread();
    driver.channel().get_capture_bitmap() = boost::make_shared<ClSimpleBitmap>();
  }

  ~SmallFrames() override {
    if (client.joinable()) {
      client.join();
    }
    SizedUnit::attached = nullptr;
  }

  void prepare_workers_bitmap() {
    EXPECT_EQ(driver.SetActiveChannel(driver.channel(), *driver.channel().get_currrent_bitmap()),
              0UL);
  }

  /// @param faults beside those that make a score of frames without a finger
  void score_frames(double threshold, const std::string& faults = "") {
    driver.m_pLiveDetection->Init();
    driver.m_pLiveDetection->SetFakeScore(threshold);
    bench.set_faults(
        "FakeFingerDetectionEvaluateLiveliness gives 90;"
        "FakeFingerDetectionEvaluateLiveliness answers 0;" +
        faults);
  }

  static void open_from_another_thread(int /*handle*/, unsigned int /*channel*/, eFGs /*grabber*/,
                                       unsigned int /*type*/, void* self) {
    auto& test = *static_cast<SmallFrames*>(self);
    test.client = go_as_far_as_locks_let([&test] {
      EXPECT_EQ(test.driver.InitializeScanner(), 0UL);
      test.opened = true;
    });
    test.opened_during_the_event = test.opened;
  }

  /// Another client opens a unit with larger frames, as far as it can.
  template <typename Closing>
  void change_unit(Closing close) {
    unit.next = {1000, 800};
    client = go_as_far_as_locks_let([this, close] {
      close();
      EXPECT_EQ(driver.InitializeScanner(), 0UL);
    });
  }

  SizedUnit unit{{320, 240}};
  std::thread client;
  std::atomic<bool> opened = false;  // by `client`
  bool opened_during_the_event = false;
};

TEST_F(SmallFrames, AFrameOfAClosedScannerFailsBeforeAUnitIsOpened) {
  prepare_workers_bitmap();
  driver.UninitializeScanner();
  unit.size = {1000, 800};
  {
    const BeforeLock fetch(system_mutex(scanner_lock(driver)), 1, [this] { change_unit([] {}); });
    EXPECT_THROW(take_a_frame(driver), ClLXException);
  }
  ASSERT_TRUE(client.joinable());
  client.join();
  EXPECT_TRUE(unit.buffers_suffice);
}

TEST_F(SmallFrames, AnImageAsItComesMeetsNoOpeningThoughTheLastOneFailedHalfWay) {
  driver.UninitializeScanner();
  bench.set_faults("ftrScanSetOptions call 1 fails with 87");
  EXPECT_THROW(driver.InitializeScanner(), ClLXException);
  {
    const BeforeLock fetch(system_mutex(scanner_lock(driver)), 2, [this] { change_unit([] {}); });
    snap_as_it_comes(driver);
  }
  ASSERT_TRUE(client.joinable());
  client.join();
  EXPECT_TRUE(unit.buffers_suffice);
}

TEST_F(SmallFrames, TheEventOfAFrameOfAClosedScannerComesWhenOpeningsAreLetIn) {
  prepare_workers_bitmap();
  driver.UninitializeScanner();
  score_frames(100, "ftrScanGetLastError answers 536870913");  // scored though there is no image
  driver.EnableEvents(0, 1, &SmallFrames::open_from_another_thread, this);
  take_a_frame(driver);
  EXPECT_TRUE(opened_during_the_event);
}

/// The bitmap is shaped, and the scanner open.
class OpeningDuringAFrame : public SmallFrames, public ::testing::WithParamInterface<FrameTaker> {
 protected:
  OpeningDuringAFrame() {
    if (GetParam().scored) {
      score_frames(1);
    }
    prepare_workers_bitmap();
  }
};

TEST_P(OpeningDuringAFrame, LeavesTheFrameTheUnitThatItsBufferWasShapedFor) {
  {
    const BeforeLock fetch(system_mutex(scanner_lock(driver)), GetParam().fetch,
                           [this] { change_unit([this] { driver.UninitializeScanner(); }); });
    GetParam().run(driver);
  }
  ASSERT_TRUE(client.joinable()) << "the frame made fewer calls into the device";
  client.join();
  EXPECT_TRUE(unit.buffers_suffice);
}

const FrameTaker kTakers[] = {
    {"APlainFrame", 1, false, take_a_frame},
    {"AScoredFramesDarkImage", 2, true, take_a_frame},
    {"AScoredFramesBacklightImage", 3, true, take_a_frame},
    {"AScoredFramesDoseImage", 4, true, take_a_frame},
    {"APreparation", 2, false, prepare},
    {"ASnapsPreparation", 2, false, snap_meanwhile},
    {"ASnapsFrame", 3, false, snap},
    {"AMeasure", 2, false, measure},
    {"AnImageAsItComes", 2, false, snap_as_it_comes},
};

INSTANTIATE_TEST_SUITE_P(Table, OpeningDuringAFrame, ::testing::ValuesIn(kTakers),
                         [](const auto& row) { return std::string(row.param.name); });

constexpr char kFrame[] = "ftrScanGetImageByVariableDose";

/// Two threads of a client at a driver that has chosen no scanner yet.
class MeetingOpenings : public DriverFixture {
 protected:
  MeetingOpenings() {
    bench.plug_in(5, {.serial = "HVK30005", .seed = 5});
    bench.list_from_base(true);
  }

  ~MeetingOpenings() override { bench.release(); }

  /// An operation that has come as far as this call of a closed library.
  template <typename Operation>
  std::future<void> begin(const std::string& function, Operation operation) {
    bench.set_faults(function + " call 1 blocks until told");
    auto result = std::async(std::launch::async, operation);
    bench.wait_until_blocked(function);
    return result;
  }

  /// Whoever waited for the opening goes on while the frame behind it is fetched.
  template <typename Operation>
  void expect_to_wait_for_no_frame_of(Operation take) {
    auto first = begin("CalibrateSetData", take);
    std::thread second =
        go_as_far_as_locks_let([this] { EXPECT_EQ(driver.InitializeScanner(), 0UL); });
    bench.set_faults(std::string(kFrame) + " call 1 blocks until told");
    bench.release();
    bench.wait_until_blocked(kFrame);
    second.join();
    bench.release();
    first.get();
  }

  void expect_open(unsigned int interface) {
    EXPECT_EQ(bench.state(interface).open_handles, 1U);
    snap(driver);
  }
};

TEST_F(MeetingOpenings, OpenTheScannerOnce) {
  auto first = begin("CalibrateSetData", [this] { EXPECT_EQ(driver.InitializeScanner(), 0UL); });
  std::thread second =
      go_as_far_as_locks_let([this] { EXPECT_EQ(driver.InitializeScanner(), 0UL); });
  bench.release();
  first.get();
  second.join();
  EXPECT_EQ(bench.count("ftrScanSetOptions"), 1U);
  expect_open(0);
}

TEST_F(MeetingOpenings, AFrameThatWaitsForOneNeedsNoOther) {
  auto first = begin("CalibrateSetData", [this] { EXPECT_EQ(driver.InitializeScanner(), 0UL); });
  std::thread second = go_as_far_as_locks_let([this] {
    ClSimpleBitmap bitmap;
    driver.GetLiveBitmap(driver.channel(), bitmap);
    EXPECT_FALSE(bitmap.Empty());
  });
  bench.release();
  first.get();
  second.join();
  EXPECT_EQ(bench.count("ftrScanSetOptions"), 1U);
  expect_open(0);
}

TEST_F(MeetingOpenings, AMeasureThatOpensTheScannerKeepsNobodyWaitingForItsFrame) {
  expect_to_wait_for_no_frame_of([this] { measure(driver); });
}

TEST_F(MeetingOpenings, APreparationThatOpensTheScannerKeepsNobodyWaitingForItsFrame) {
  expect_to_wait_for_no_frame_of([this] { lx::prepare(driver); });
}

TEST_F(MeetingOpenings, AFrameThatOpensTheScannerKeepsNobodyWaitingForIt) {
  expect_to_wait_for_no_frame_of([this] {
    ClSimpleBitmap bitmap;
    driver.GetLiveBitmap(driver.channel(), bitmap);
  });
}

TEST_F(MeetingOpenings, AFailedOneClosesNoScannerThatAnotherHasOpenedSince) {
  open();
  driver.UninitializeScanner();
  bench.set_faults("ftrScanOpenDeviceOnInterface fails with 31");
  unsigned int opened = 0;
  {
    // Behind that of the frame and that of its preparation only a closing would take it.
    const BeforeLock third(driver.m_cUnitLock.native_handle(), 3, [this, &opened] {
      bench.set_faults("");
      std::thread([this] { EXPECT_EQ(driver.InitializeScanner(), 0UL); }).join();
      opened = 1;
    });
    ClSimpleBitmap bitmap;
    EXPECT_THROW(driver.GetLiveBitmap(driver.channel(), bitmap), ClLXException);
  }
  EXPECT_EQ(bench.state(0).open_handles, opened);
}

TEST_F(MeetingOpenings, AnOpeningDoesNotFallIntoTheMidstOfAChange) {
  open();
  auto change =
      begin("ftrScanGetDeviceInfo", [this] { EXPECT_EQ(driver.SetActiveScanner(5), 0UL); });
  std::thread opening =
      go_as_far_as_locks_let([this] { EXPECT_EQ(driver.InitializeScanner(), 0UL); });
  bench.release();
  change.get();
  opening.join();
  expect_open(5);
}

// The list that was read first begins with another scanner than the one that captures by now.
TEST_F(MeetingOpenings, AFirstChoiceThatComesTooLateLeavesScannerAndCaptureAlone) {
  bench.unplug(0);
  auto late = begin("ftrScanCloseDevice", [this] { EXPECT_EQ(driver.InitializeScanner(), 0UL); });
  bench.plug_in_again(0);
  ASSERT_EQ(driver.StartCapture(1, 1, eCaptureLive, nullptr, nullptr, nullptr, nullptr, nullptr),
            0UL);
  bench.release();
  late.get();
  EXPECT_TRUE(driver.channel().m_bRunning);
  EXPECT_EQ(driver.m_nActiveScanner, 0U);
  EXPECT_TRUE(driver.StopCapture(1));
  expect_open(0);
}

/// A client whose event callback has another thread close the scanner, and waits for it.
struct ClosingClient {
  Driver& driver;
  std::future<void> closing;
  bool closed_in_time = false;

  static void on_event(int /*handle*/, unsigned int /*channel*/, eFGs /*kind*/,
                       unsigned int /*type*/, void* user) {
    constexpr std::chrono::seconds kPatience{20};
    auto& self = *static_cast<ClosingClient*>(user);
    self.closing = std::async(std::launch::async, [&self] { self.driver.UninitializeScanner(); });
    self.closed_in_time = self.closing.wait_for(kPatience) == std::future_status::ready;
  }
};

TEST_F(MeetingOpenings, AClosingNeedNotWaitForAnEventCallback) {
  bench.set_timeline(simulator::Timeline::settled_finger());
  driver.m_pLiveDetection->Init();
  driver.m_pLiveDetection->SetFakeScore(1000);
  ClosingClient client{driver, {}, false};
  driver.EnableEvents(0, 1, &ClosingClient::on_event, &client);
  snap(driver);
  EXPECT_TRUE(client.closed_in_time);
}

}  // namespace
}  // namespace Osv::lx
