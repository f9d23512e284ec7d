#include <gtest/gtest.h>

#include <future>
#include <string>

#include "driver/driver_fixture.h"

namespace Osv::lx {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const Failure kWrongChannel = {4, "Incorrect channel number for frame grabber"};

/// A client that waits for the end of a capture and keeps what it was told.
struct Client {
  std::promise<void> stopped;
  std::string error;
  int handle = 0;
  std::promise<void> first_image;
  bool has_image = false;

  static Client& self(void* user) { return *static_cast<Client*>(user); }
  static void live(int handle, unsigned int, unsigned char*, void* user) {
    if (!self(user).has_image) {
      self(user).has_image = true;
      self(user).handle = handle;
      self(user).first_image.set_value();
    }
  }
  static void on_error(int, unsigned int, const char* text, void* user) { self(user).error = text; }
  static void stop(int, unsigned int, void* user) { self(user).stopped.set_value(); }
};

class CaptureControl : public DriverFixture {
 protected:
  unsigned long start(Client& user) {
    driver.SetCallbacks(1, nullptr, &Client::stop);
    return driver.StartCapture(17, 1, eCaptureLive, &Client::live, nullptr, &Client::on_error,
                               nullptr, &user);
  }

  Client client;
};

TEST_F(CaptureControl, StartingLogsHandleChannelAndModeBeforeItOpens) {
  bench.unplug_all();
  driver.StartCapture(17, 1, eCapturePlain, nullptr, nullptr, nullptr, nullptr, nullptr);
  EXPECT_EQ(log_lines().front(),
            "7 KR9 scanner. Calling StartCapture. Framegrabber handle: 17, channel number: 1, "
            "capture mode ID: 1");
  EXPECT_EQ(story()[1].substr(0, 3), "7 C");  // the device begins to load its library
}

TEST_F(CaptureControl, StartingMakesTheDriverTheChannelsScanner) {
  Driver another;
  bench.unplug_all();
  another.StartCapture(1, 1, eCaptureLive, nullptr, nullptr, nullptr, nullptr, nullptr);
  EXPECT_EQ(ClFrameGrabberChannel::m_pFramegrabberSDK, &another);
  driver.StartCapture(1, 1, eCaptureLive, nullptr, nullptr, nullptr, nullptr, nullptr);
  EXPECT_EQ(ClFrameGrabberChannel::m_pFramegrabberSDK, &driver);
}

TEST_F(CaptureControl, StartingWithoutAScannerGives2AndNoException) {
  bench.unplug_all();
  EXPECT_EQ(start(client), 2UL);
  EXPECT_FALSE(driver.channel().m_bRunning);
}

TEST_F(CaptureControl, StartingOnAChannelOutOfRangeIsRefusedWithTheScannerOpen) {
  for (const unsigned int channel : {0U, 2U}) {
    EXPECT_EQ(failure_of([&] {
                driver.StartCapture(1, channel, eCaptureLive, nullptr, nullptr, nullptr, nullptr,
                                    nullptr);
              }),
              kWrongChannel);
  }
  EXPECT_TRUE(driver.m_bInitialized);
}

TEST_F(CaptureControl, FramesReachTheClientWithItsHandle) {
  ASSERT_EQ(start(client), 0UL);
  client.first_image.get_future().wait();
  EXPECT_TRUE(driver.StopCapture(1));
  EXPECT_EQ(client.handle, 17);
  EXPECT_EQ(client.error, "");
}

TEST_F(CaptureControl, StoppingLogsTheChannel) {
  driver.StopCapture(1);
  EXPECT_THAT(story(),
              ElementsAre("7 KR9 scanner. Calling StopCapture function. Channel number: 1"));
}

TEST_F(CaptureControl, StoppingAChannelOutOfRangeIsLoggedAndRefused) {
  EXPECT_EQ(failure_of([&] { driver.StopCapture(2); }), kWrongChannel);
  EXPECT_THAT(log_lines(),
              ElementsAre("7 KR9 scanner. Calling StopCapture function. Channel number: 2"));
}

TEST_F(CaptureControl, StoppingAllChannelsEndsTheWorker) {
  ASSERT_EQ(start(client), 0UL);
  client.first_image.get_future().wait();
  driver.StopAllChannel();
  EXPECT_FALSE(driver.channel().m_bRunning);
  client.stopped.get_future().wait();
}

TEST_F(CaptureControl, FreezingSetsTheChannelsFlagAndLogsIt) {
  driver.Freeze(1, true);
  EXPECT_TRUE(driver.channel().m_bFreeze);
  driver.Freeze(1, false);
  EXPECT_FALSE(driver.channel().m_bFreeze);
  EXPECT_THAT(story(),
              ElementsAre("7 KR9 scanner. Calling Freeze function. Channel number: 1, enable: 1",
                          "7 KR9 scanner. Calling Freeze function. Channel number: 1, enable: 0"));
}

TEST_F(CaptureControl, FreezingAChannelOutOfRangeIsRefused) {
  EXPECT_EQ(failure_of([&] { driver.Freeze(0, true); }), kWrongChannel);
}

TEST_F(CaptureControl, TheDefaultCameraTouchesNoChannel) {
  driver.channel().m_Camera.m_eCamera = eCamera4;
  driver.SetDefaultCamera(99);
  EXPECT_EQ(driver.channel().m_Camera.m_eCamera, eCamera4);
  EXPECT_THAT(story(), IsEmpty());
}

TEST_F(CaptureControl, AnUnpluggedScannerEndsCaptureWithOneErrorThatEndsIn2) {
  ASSERT_EQ(start(client), 0UL);
  client.first_image.get_future().wait();
  bench.unplug(0);
  client.stopped.get_future().wait();
  EXPECT_EQ(client.error, "KR9 scanner is disconnected from the host, error: 2 error: 2");
  EXPECT_FALSE(driver.m_bInitialized);
  EXPECT_EQ(driver.LastErrorText(), "KR9 scanner is disconnected from the host, error: 2");
  driver.StopCapture(1);
}

TEST_F(CaptureControl, Error31OnAFrameIsADisconnectionThatEndsIn2Too) {
  bench.set_faults("ftrScanGetImageByVariableDose from call 3 on fails with 31");
  ASSERT_EQ(start(client), 0UL);
  client.stopped.get_future().wait();
  EXPECT_EQ(client.error, "KR9 scanner is disconnected from the host, error: 2 error: 2");
  EXPECT_EQ(driver.m_nLastError, 31U);
  driver.StopCapture(1);
}

TEST_F(CaptureControl, AfterADisconnectionTheNextStartReopensTheSameIndexAndReadsTheCalibration) {
  ASSERT_EQ(start(client), 0UL);
  client.first_image.get_future().wait();
  const auto old = driver.m_pCalibration.get();
  driver.m_nImageDataFormat = 2;
  bench.unplug(0);
  client.stopped.get_future().wait();
  driver.StopCapture(1);
  EXPECT_EQ(driver.m_nImageDataFormat, 2);
  bench.plug_in_again(0);
  bench.plug_in(3, {.serial = "HVK30003"});
  Client second;
  ASSERT_EQ(start(second), 0UL);
  second.first_image.get_future().wait();
  EXPECT_EQ(driver.m_nActiveScanner, 0U);
  EXPECT_EQ(bench.state(0).open_handles, 1U);
  EXPECT_NE(driver.m_pCalibration.get(), old);
  EXPECT_EQ(driver.m_nImageDataFormat, 1);
  driver.StopCapture(1);
}

TEST_F(CaptureControl, ADisconnectionLeavesIndexCalibrationBitmapChannelAndDescription) {
  ASSERT_EQ(driver.ReadSDKInfo(), 0UL);
  utilities::ClSimpleBitmap bitmap;
  prepare(bitmap);
  const auto calibration = driver.m_pCalibration.get();
  const unsigned long size = driver.m_nCalibratedSize;
  failure_of([&] { driver.CheckScannerError(2); });
  EXPECT_EQ(driver.m_nActiveScanner, 0U);
  EXPECT_EQ(driver.m_pCalibration.get(), calibration);
  EXPECT_FALSE(driver.m_cRawBitmap.Empty());
  EXPECT_EQ(driver.m_nCalibratedSize, size);
  EXPECT_EQ(driver.m_nActiveChannel, 1U);
  EXPECT_FALSE(driver.m_cSDKInfo.IsEmpty());
}

TEST_F(CaptureControl, AnErrorWhilePreparingDoesNotCloseTheScanner) {
  bench.set_faults("ftrScanGetImageByVariableDose call 1 fails with 2");
  ASSERT_EQ(start(client), 0UL);
  client.stopped.get_future().wait();
  EXPECT_EQ(client.error, "Capture raw image failed. error: 2");
  EXPECT_TRUE(driver.m_bInitialized);
  driver.StopCapture(1);
}

TEST_F(CaptureControl, AScannerThatGoesBeforeTheWorkerOpensItIsTold) {
  struct Departure : Client {
    Driver* driver = nullptr;
    simulator::Bench* bench = nullptr;
  } departure;
  departure.driver = &driver;
  departure.bench = &bench;
  driver.SetCallbacks(
      1,
      [](int, unsigned int, void* user) {
        const auto& self = static_cast<Departure&>(Client::self(user));
        self.driver->UninitializeScanner();
        self.bench->set_faults("ftrScanGetInterfaces fails with 55");
      },
      &Client::stop);
  Client* const user = &departure;
  driver.StartCapture(1, 1, eCaptureLive, nullptr, nullptr, &Client::on_error, nullptr, user);
  departure.stopped.get_future().wait();
  driver.StopCapture(1);
  EXPECT_EQ(departure.error, "Failed to initialize KR9-scanner. error: 55");
}

}  // namespace
}  // namespace Osv::lx
