#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <future>

#include "capture/stub_framegrabber.h"
#include "driver/driver_fixture.h"

namespace Osv::lx {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const Failure kWrongChannel = {4, "Incorrect channel number for frame grabber"};

struct FrameInfo : DriverFixture {
  FrameInfo() {
    driver.m_dLifeness = 12.5;
    driver.m_nLifenessState = -770;
    record.fill(0x55);
  }

  std::array<unsigned char, 16> record{};
};

TEST_F(FrameInfo, Type0IsTheScoreAlone) {
  driver.CurrentFrameInfo(0, 0, record.data());
  double score = 0;
  std::memcpy(&score, record.data(), sizeof(score));
  EXPECT_EQ(score, 12.5);
  EXPECT_EQ(record[8], 0x55);
}

TEST_F(FrameInfo, Type1IsTheScoreAndTheState) {
  driver.CurrentFrameInfo(0, 1, record.data());
  double score = 0;
  int state = 0;
  std::memcpy(&score, record.data(), sizeof(score));
  std::memcpy(&state, record.data() + 8, sizeof(state));
  EXPECT_EQ(score, 12.5);
  EXPECT_EQ(state, -770);
  EXPECT_EQ(record[12], 0x55);
}

TEST_F(FrameInfo, Type2IsRefusedWithNumber57AndATextThatHoldsA2) {
  EXPECT_EQ(failure_of([&] { driver.CurrentFrameInfo(0, 2, record.data()); }),
            (Failure{57, "The frame information type ID[2] isn't supported by the frame grabber"}));
}

TEST_F(FrameInfo, ANullPointerIsRefusedWith60AndNoTextWhateverTheType) {
  EXPECT_EQ(failure_of([&] { driver.CurrentFrameInfo(0, 0, nullptr); }), (Failure{60, ""}));
  EXPECT_EQ(failure_of([&] { driver.CurrentFrameInfo(0, 2, nullptr); }), (Failure{60, ""}));
}

TEST_F(FrameInfo, TheFirstArgumentIsNotUsedAndTheScannerNotTouched) {
  driver.CurrentFrameInfo(99, 0, record.data());
  EXPECT_THAT(story(), IsEmpty());
}

struct Event {
  int count = 0;
  int handle = 0;
  unsigned int channel = 0;

  static void note(int handle, unsigned int channel, eFGs, unsigned int, void* user) {
    auto& event = *static_cast<Event*>(user);
    event = {event.count + 1, handle, channel};
  }
};

struct DriverEvents : DriverFixture {};

TEST_F(DriverEvents, TheHandleIsTheSecondArgumentAndTheFirstIsDropped) {
  Event event;
  driver.EnableEvents(11, 22, &Event::note, &event);
  driver.OnFakeFinger();
  EXPECT_EQ(event.handle, 22);
  EXPECT_EQ(event.channel, 1U);
}

TEST_F(DriverEvents, EnablingIsLogged) {
  driver.EnableEvents(11, 22, nullptr, nullptr);
  EXPECT_THAT(story(), ElementsAre("7 KR9 scanner. Enabling of KR9 scanner events."));
}

TEST_F(DriverEvents, WithANullCallbackAFakeFingerIsNoticedByNobody) {
  Event event;
  driver.EnableEvents(11, 22, &Event::note, &event);
  driver.EnableEvents(11, 22, nullptr, &event);
  bench.clear_journal();
  driver.OnFakeFinger();
  EXPECT_EQ(event.count, 0);
  EXPECT_THAT(story(), IsEmpty());
}

struct ChannelSettings : DriverFixture {};

TEST_F(ChannelSettings, ACameraOpensTheScannerIsLoggedAndSet) {
  driver.SetCamera(1, eCamera4, eColorModeGray);
  EXPECT_TRUE(driver.m_bInitialized);
  EXPECT_EQ(log_lines().back(),
            "7 KR9 scanner. SetCamera. Channel number: 1, camera ID: 4, color mode: 0");
  EXPECT_EQ(driver.channel().m_Camera.m_eCamera, eCamera4);
}

TEST_F(ChannelSettings, ACameraIsSetWithoutAScannerToo) {
  bench.unplug_all();
  driver.SetCamera(1, eCamera4, eColorModeGray);
  EXPECT_EQ(driver.channel().m_Camera.m_eCamera, eCamera4);
}

TEST_F(ChannelSettings, AColourModeIsRefusedWithNumber9EvenWithoutAScanner) {
  bench.unplug_all();
  EXPECT_EQ(failure_of([&] { driver.SetCamera(1, eCamera4, static_cast<eColorModeIDs>(1)); }),
            (Failure{9, "The frame grabber does not support this color mode"}));
}

TEST_F(ChannelSettings, AColourModeIsFoundBeforeAWrongChannel) {
  EXPECT_EQ(
      failure_of([&] { driver.SetCamera(2, eCamera4, static_cast<eColorModeIDs>(1)); }).number, 9);
  EXPECT_EQ(failure_of([&] { driver.SetCamera(2, eCamera4, eColorModeGray); }), kWrongChannel);
}

TEST_F(ChannelSettings, AFilterIsLoggedAndSet) {
  driver.channel().m_bDirty = false;
  driver.SetFilter(1, eFilterNone);
  EXPECT_TRUE(driver.channel().m_bDirty);
  EXPECT_THAT(
      story(),
      ElementsAre("7 KR9 scanner. Calling SetFilter function. Channel number: 1, filter ID: 0"));
}

TEST_F(ChannelSettings, AResolutionIsLoggedWithItsPixelsPerMetreAndSet) {
  driver.SetResolution(1, ClImageResolution(100, 200));
  EXPECT_EQ(driver.channel().m_Resolution, ClImageResolution(100, 200));
  EXPECT_THAT(story(), ElementsAre("7 KR scanner. Calling SetResolution function. Channel number: "
                                   "1, X: 100, Y: 200"));
}

TEST_F(ChannelSettings, AnAspectRatioIsAlwaysRefusedWithNumber14) {
  EXPECT_EQ(failure_of([&] { driver.SetAspectRatio(1, 1, 1); }),
            (Failure{14, "This property or function is not supported by frame grabber"}));
  EXPECT_THAT(story(), IsEmpty());
}

TEST_F(ChannelSettings, CallbacksAreLoggedAndReachTheClient) {
  std::promise<void> started;
  driver.SetCallbacks(
      1, [](int, unsigned int, void* user) { static_cast<std::promise<void>*>(user)->set_value(); },
      nullptr);
  EXPECT_THAT(story(), ElementsAre("7 KR9 scanner Setting of start and stop callbacks"));
  driver.StartCapture(1, 1, eCaptureLive, nullptr, nullptr, nullptr, nullptr, &started);
  started.get_future().wait();
  driver.StopCapture(1);
}

TEST_F(ChannelSettings, AChannelOutOfRangeIsRefusedWithNumber4) {
  EXPECT_EQ(failure_of([&] { driver.SetFilter(0, eFilterNone); }), kWrongChannel);
  EXPECT_EQ(failure_of([&] { driver.SetResolution(2, {}); }), kWrongChannel);
  EXPECT_EQ(failure_of([&] { driver.SetAspectRatio(2, 1, 1); }), kWrongChannel);
  EXPECT_EQ(failure_of([&] { driver.SetCallbacks(2, nullptr, nullptr); }), kWrongChannel);
}

TEST_F(ChannelSettings, RefreshingTheBackgroundDoesNothingInTheDriver) {
  test::StubFramegrabber grabber;
  driver.RefreshBackGround(1, grabber);
  driver.RefreshBackGround(99, grabber);
  EXPECT_THAT(story(), IsEmpty());
}

}  // namespace
}  // namespace Osv::lx
