#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

#include "driver/driver_fixture.h"

namespace Osv::lx {
namespace {

constexpr int kRounds = 5;

/// A client that counts its images and waits for them.
struct Client {
  std::atomic<int> images{0};
  std::atomic<int> events{0};
  std::string error;

  static Client& self(void* user) { return *static_cast<Client*>(user); }
  static void live(int, unsigned int, unsigned char*, void* user) {
    ++self(user).images;
    self(user).images.notify_all();
  }
  static void on_error(int, unsigned int, const char* text, void* user) { self(user).error = text; }
  static void event(int, unsigned int, eFGs, unsigned int, void* user) { ++self(user).events; }

  void wait_for_images(int count) {
    for (int seen = images; seen < count; seen = images) {
      images.wait(seen);
    }
  }
};

class DriverThreads : public DriverFixture {
 protected:
  DriverThreads() { bench.record(false); }

  void start() {
    ASSERT_EQ(driver.StartCapture(1, 1, eCaptureLive, &Client::live, nullptr, &Client::on_error,
                                  nullptr, &client),
              0UL);
    client.wait_for_images(1);
  }

  void stop() {
    client.wait_for_images(client.images + 1);
    EXPECT_TRUE(driver.StopCapture(1));
    EXPECT_EQ(client.error, "");
  }

  void snap() {
    unsigned char* block = nullptr;
    EXPECT_EQ(driver.Snap(1, &block), 0UL);
    const std::unique_ptr<unsigned char[]> image(block);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(reinterpret_cast<const tagBITMAPINFOHEADER*>(block)->biWidth, 498);
  }

  Client client;
};

TEST_F(DriverThreads, AClientMaySnapWhileAWorkerCaptures) {
  start();
  for (int round = 0; round < kRounds; ++round) {
    snap();
  }
  stop();
}

TEST_F(DriverThreads, AClientMayReplaceTheEventCallbackWhileItIsFired) {
  bench.set_timeline(simulator::Timeline::settled_finger());
  driver.m_pLiveDetection->Init();
  driver.m_pLiveDetection->SetFakeScore(1000);
  driver.EnableEvents(0, 1, &Client::event, &client);
  start();
  for (int round = 0; round < kRounds; ++round) {
    driver.EnableEvents(0, 1, nullptr, nullptr);
    driver.EnableEvents(0, 1, &Client::event, &client);
  }
  client.wait_for_images(client.images + 2);  // the second one was begun after the last exchange
  stop();
  EXPECT_GT(client.events, 0);
}

TEST_F(DriverThreads, AClientMayReadTheLastErrorWhileAnotherThreadStoresOne) {
  std::thread storing([&] {
    for (int round = 0; round < kRounds * kRounds; ++round) {
      driver.SetLastFGError(5, "a text that is longer than what a string keeps within itself");
    }
  });
  for (int round = 0; round < kRounds * kRounds; ++round) {
    const std::string text = driver.LastErrorText();
    EXPECT_TRUE(text.empty() || text.size() == 60);
  }
  storing.join();
}

TEST_F(DriverThreads, AClientMayAskForScannersAndFrameInformationWhileAWorkerCaptures) {
  start();
  for (int round = 0; round < kRounds; ++round) {
    unsigned long count = 0;
    double score = 0;
    EXPECT_EQ(driver.AvailableScanners(nullptr, count), 17UL);
    driver.CurrentFrameInfo(0, 0, &score);
    driver.SetCamera(1, eCamera4, eColorModeGray);
    EXPECT_EQ(driver.GetRevisionStr(), "simulated unit 1");
  }
  stop();
}

TEST_F(DriverThreads, AClientMayFreezeAndThawAWorker) {
  start();
  for (int round = 0; round < kRounds; ++round) {
    driver.Freeze(1, true);
    driver.Freeze(1, false);
    client.wait_for_images(client.images + 1);
  }
  stop();
}

TEST_F(DriverThreads, AChangeOfScannerStopsTheWorkerAndTheNextCaptureRunsOnTheNewOne) {
  bench.plug_in(5, {.serial = "HVK30005", .seed = 5});
  bench.list_from_base(true);
  start();
  EXPECT_EQ(driver.SetActiveScanner(5), 0UL);
  driver.StopCapture(1);
  start();
  EXPECT_EQ(bench.state(5).open_handles, 1U);
  stop();
}

}  // namespace
}  // namespace Osv::lx
