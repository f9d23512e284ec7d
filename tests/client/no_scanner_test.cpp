#include "client/client_fixture.h"

namespace Osv::client {
namespace {

constexpr char kNotConnected[] = "The scanner is not connected to the host";

/// No scanner attached.
class NoScanner : public ClientTest {
 protected:
  NoScanner() { bench.unplug_all(); }

  void expect_number_2(unsigned long result, const char* text) {
    EXPECT_EQ(result, 0x10000002U);
    EXPECT_EQ(last_text(), text);
  }
};

TEST_F(NoScanner, TheListIsEmptyAndNoFailure) {
  unsigned long count = 0;
  EXPECT_EQ(grabber->AvailableDevices(nullptr, count), 0U);
  EXPECT_EQ(count, 0U);
}

TEST_F(NoScanner, AListWithRoomComesBackEmpty) {
  std::vector<DeviceInfo> list(3);
  unsigned long count = list.size();
  EXPECT_EQ(grabber->AvailableDevices(list.data(), count), 0U);
  EXPECT_EQ(count, 0U);
}

TEST_F(NoScanner, ChoosingOneIsRefusedWith27) {
  EXPECT_EQ(grabber->SetActiveDevice(0), 0x1000001BU);
  EXPECT_EQ(last_text(), "The device index out of range or is not supported by frame grabber");
}

TEST_F(NoScanner, StartingReports2WithItsOwnText) {
  expect_number_2(start(eCaptureLive), "Failed start capturing.");
  EXPECT_EQ(stop(), 0U);
  EXPECT_TRUE(recorder.all().empty());
}

TEST_F(NoScanner, ASnapReports2WithItsOwnTextAndDeliversNothing) {
  unsigned char* image = nullptr;
  expect_number_2(grabber->GetImage(kChannel, &image), "GetImage function failed.");
  EXPECT_EQ(image, nullptr);
}

TEST_F(NoScanner, TheDescriptionReports2WithItsOwnText) {
  unsigned long size = 0;
  expect_number_2(grabber->GetInfo(nullptr, size), "More data are available");
}

TEST_F(NoScanner, PropertiesAndTheDirtOfThePlatenReport2) {
  unsigned int value = 0;
  double level = 0;
  expect_number_2(grabber->SetFGProperty(ePropRedLED, 1), kNotConnected);
  expect_number_2(grabber->GetFGProperty(ePropRedLED, value), kNotConnected);
  expect_number_2(grabber->ContaminationDetection(kChannel, &level), kNotConnected);
}

TEST_F(NoScanner, FeaturesReportABare2) {
  osvlx3_feature feature{};
  EXPECT_EQ(plugin.get_feature()(kChannel, &feature), 2U);
  EXPECT_EQ(plugin.set_feature()(kChannel, &feature), 2U);
}

TEST_F(NoScanner, WhatNeedsNoScannerWorks) {
  unsigned long index = 7;
  EXPECT_EQ(grabber->GetActiveDevice(index), 0U);
  EXPECT_EQ(index, 0U);
  EXPECT_EQ(grabber->SetCamera(kChannel, eCamera8, eColorModeGray), 0U);
  EXPECT_EQ(grabber->SetFilter(kChannel, eFilterNone), 0U);
  EXPECT_EQ(grabber->Freeze(kChannel, false), 0U);
  EXPECT_EQ(grabber->RefreshBackGround(kChannel), 0U);
}

TEST_F(NoScanner, OneThatIsPluggedInLaterIsFoundByTheNextOperation) {
  EXPECT_EQ(start(eCaptureLive), 0x10000002U);
  bench.plug_in(9, simulator::Device{});
  EXPECT_EQ(start(eCaptureLive), 0U);
  EXPECT_TRUE(recorder.wait_for(eEvent::Live));
  unsigned long index = 0;
  EXPECT_EQ(grabber->GetActiveDevice(index), 0U);
  EXPECT_EQ(index, 9U);
}

}  // namespace
}  // namespace Osv::client
