#include "capture/capture_channel.h"

#include <memory>
#include <thread>

#include "capture/channel_bench.h"

namespace Osv::lx {
namespace {

using test::Client;
using test::Failure;
using test::failure_of;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr eColorModeIDs kColor{1};
constexpr eFilterIDs kFilter{3};

// Construction and copies.

TEST(CaptureChannel, ANewChannelIsIdle) {
  const ClFrameGrabberChannel channel;
  EXPECT_FALSE(channel.m_bRunning);
  EXPECT_FALSE(channel.IsFreezed());
  EXPECT_FALSE(channel.m_bTrigger);
  EXPECT_TRUE(channel.m_bDirty);
  EXPECT_FALSE(channel.IsCurrentThread());
  EXPECT_FALSE(channel.CheckCameraSet());
}

TEST(CaptureChannel, ANewChannelHasNumber1AndNoHandle) {
  const ClFrameGrabberChannel channel;
  EXPECT_EQ(channel.m_nChannel, 1U);
  EXPECT_EQ(channel.m_nHandle, -1);
  EXPECT_EQ(channel.m_eColorMode, 0U);
  EXPECT_EQ(channel.m_eFilter, 0U);
  EXPECT_EQ(channel.m_Resolution, ClImageResolution());
}

TEST(CaptureChannel, ANewChannelHasNeitherStrategyNorBitmapNorCallbacks) {
  const ClFrameGrabberChannel channel;
  EXPECT_EQ(channel.m_pDetection, nullptr);
  EXPECT_EQ(channel.get_currrent_bitmap(), nullptr);
  EXPECT_TRUE(channel.m_Background.Empty());
  EXPECT_EQ(channel.m_pfnLiveImage, nullptr);
  EXPECT_EQ(channel.m_pfnError, nullptr);
  EXPECT_EQ(channel.m_pfnFinger, nullptr);
  EXPECT_EQ(channel.m_pfnWarning, nullptr);
  EXPECT_EQ(channel.m_pUserData, nullptr);
}

TEST(CaptureChannel, OnlyTheGeneralChannelProcessesImages) {
  EXPECT_TRUE(ClFrameGrabberChannel().DoImageProcessing());
  EXPECT_FALSE(ClOstrevanHVK3Channel().DoImageProcessing());
}

TEST(CaptureChannel, ItsPlaceForMoreProcessingIsEmpty) {
  ClFrameGrabberChannel channel;
  channel.AddSpecificImageProcessing();
  EXPECT_TRUE(channel.m_bDirty);
  EXPECT_TRUE(channel.m_Background.Empty());
  EXPECT_EQ(channel.get_currrent_bitmap(), nullptr);
}

struct Copying : test::StillBench {
  Copying() {
    start(eCapturePlain);
    channel.m_nChannel = 2;
    channel.m_bDirty = false;
    channel.m_bFreeze = true;
    channel.m_bTrigger = true;
    channel.SetCamera(eCamera5, eColorModeGray);
    channel.m_eColorMode = kColor;
    channel.m_eFilter = kFilter;
    channel.m_Resolution = ClImageResolution(1, 2);
    channel.m_Background = test::gray_image(4, 4, 9);
    channel.get_capture_bitmap().reset(new utilities::ClSimpleBitmap);
    channel.SetCurrentThread();
  }
};

TEST_F(Copying, TakesTheParameters) {
  const ClOstrevanHVK3Channel copy(channel);
  EXPECT_EQ(copy.m_Camera.m_eCamera, eCamera5);
  EXPECT_EQ(copy.m_Camera.m_nWidth, 610U);
  EXPECT_EQ(copy.m_nChannel, 2U);
  EXPECT_FALSE(copy.m_bDirty);
  EXPECT_TRUE(copy.m_bFreeze);
  EXPECT_EQ(copy.m_eColorMode, kColor);
  EXPECT_EQ(copy.m_eFilter, kFilter);
  EXPECT_TRUE(copy.m_bRunning);
}

TEST_F(Copying, TakesTheHandleAndAllImageAndErrorCallbacks) {
  const ClOstrevanHVK3Channel copy(channel);
  EXPECT_EQ(copy.m_nHandle, kHandle);
  EXPECT_EQ(copy.m_pfnLiveImage, &Client::live);
  EXPECT_EQ(copy.m_pfnFinger, &Client::finger);
  EXPECT_EQ(copy.m_pfnError, &Client::error);
  EXPECT_EQ(copy.m_pUserData, &client);
}

TEST_F(Copying, LeavesWhatBelongsToOneCapture) {
  ClOstrevanHVK3Channel copy(channel);
  EXPECT_EQ(copy.m_pDetection, nullptr);
  EXPECT_EQ(copy.get_currrent_bitmap(), nullptr);
  EXPECT_TRUE(copy.m_Background.Empty());
  EXPECT_EQ(copy.m_Resolution, ClImageResolution());
  EXPECT_FALSE(copy.m_bTrigger);
  EXPECT_EQ(copy.m_pfnWarning, nullptr);
  EXPECT_FALSE(copy.IsCurrentThread());
}

TEST_F(Copying, LeavesTheStartAndStopCallbacks) {
  ClOstrevanHVK3Channel copy(channel);
  copy.m_Callbacks.OnStart(1, 1, &client);
  copy.m_Callbacks.OnStop(1, 1, &client);
  EXPECT_THAT(journal.entries(), IsEmpty());
}

// A driver's data.

struct Data : ClFrameGrabberChannelSDKData {
  explicit Data(int& deleted) : m_deleted(deleted) {}
  ~Data() override { ++m_deleted; }
  int& m_deleted;
};

TEST(ChannelData, NewDataReplacesAndDeletesTheOld) {
  int deleted = 0;
  ClFrameGrabberChannel channel;
  channel.SetSDKData(std::make_unique<Data>(deleted).release());
  EXPECT_EQ(deleted, 0);
  channel.SetSDKData(nullptr);
  EXPECT_EQ(deleted, 1);
}

TEST(ChannelData, DataThatIsStillThereOutlivesTheChannel) {
  int deleted = 0;
  const auto data = std::make_unique<Data>(deleted);
  { ClFrameGrabberChannel().SetSDKData(data.get()); }
  EXPECT_EQ(deleted, 0);
}

TEST_F(Copying, LeavesTheDriversData) {
  int deleted = 0;
  channel.SetSDKData(std::make_unique<Data>(deleted).release());
  EXPECT_EQ(ClOstrevanHVK3Channel(channel).m_pSDKData, nullptr);
  channel.SetSDKData(nullptr);
}

// Starting and stopping.

struct Starting : test::StillBench {};

TEST_F(Starting, StoresWhatTheClientGave) {
  EXPECT_TRUE(start(eCapturePlain));
  EXPECT_TRUE(channel.m_bRunning);
  EXPECT_EQ(channel.GetCaptureMode(), eCapturePlain);
  EXPECT_EQ(channel.m_nHandle, kHandle);
  EXPECT_EQ(channel.m_pfnWarning, &Client::warning);
  EXPECT_EQ(channel.m_pUserData, &client);
}

TEST_F(Starting, EveryCallbackMayBeNull) {
  channel.SetCallbacks(nullptr, nullptr);
  channel.StartCapture(1, eCapturePlain, nullptr, nullptr, nullptr, nullptr, nullptr);
  scanner.when("UnLock", [this](utilities::ClSimpleBitmap&) {
    if (journal.count("UnLock") == 2) {
      throw ClLXException("no", 1);
    }
  });
  EXPECT_EQ(channel.Work(), 0);
  EXPECT_EQ(journal.count("GetLiveBitmap"), 1);
}

TEST_F(Starting, IsRefusedDuringCaptureWithNumber77AndNoText) {
  start(eCaptureLive);
  EXPECT_EQ(failure_of([this] { start(eCapturePlain); }), Failure(77, ""));
  EXPECT_EQ(channel.GetCaptureMode(), eCaptureLive);
}

TEST_F(Starting, AModeWithoutAStrategyFailsWithNumber51) {
  EXPECT_EQ(failure_of([this] { start(eCapturePreviewAutoDetect); }),
            Failure(51, "Not enough storage is available to complete this operation"));
}

TEST_F(Starting, AModeWithoutAStrategyLosesTheOldOneAndChangesNothingElse) {
  start(eCaptureLive);
  channel.StopCapture();
  failure_of([this] {
    channel.StartCapture(8, eCapturePreviewAutoDetect, nullptr, nullptr, nullptr, nullptr, nullptr);
  });
  EXPECT_EQ(channel.m_pDetection, nullptr);
  EXPECT_FALSE(channel.m_bRunning);
  EXPECT_EQ(channel.m_nHandle, kHandle);
  EXPECT_EQ(channel.m_pfnLiveImage, &Client::live);
  EXPECT_EQ(channel.m_pUserData, &client);
}

TEST_F(Starting, EveryCaptureBeginsWithANewStrategy) {
  start(eCaptureFastPlain);
  channel.StopCapture();
  channel.m_pDetection.reset(ClImageDetection::Create(eCapturePreview));
  start(eCaptureFastPlain);
  EXPECT_EQ(channel.GetCaptureMode(), eCaptureFastPlain);
}

/// Brings one frame of a gray level to the strategy.
void show(test::StillChannel& channel, unsigned char level) {
  utilities::ClSimpleBitmap frame = test::gray_image(120, 5, level);
  channel.SendBitmapToClient(frame, true);
}

TEST_F(Starting, EveryCaptureBeginsWithAStrategyInItsInitialState) {
  start(eCaptureFastPlain);
  show(channel, 255);
  show(channel, 100);
  channel.StopCapture();
  start(eCaptureFastPlain);
  show(channel, 254);
  EXPECT_EQ(journal.count("finger 3"), 0) << "the finger of the capture before was never lifted";
  show(channel, 120);
  show(channel, 254);
  EXPECT_EQ(journal.count("finger 3"), 1) << "darker than this capture's platen";
}

TEST_F(Starting, AThreadThatCannotBeCreatedIsLoggedAndLeavesTheChannelStarted) {
  const test::LogRecorder log;
  channel.starts = false;
  EXPECT_FALSE(start(eCaptureLive));
  EXPECT_TRUE(channel.m_bRunning);
  EXPECT_THAT(log.lines(), ElementsAre("3 KR9 scanner. The capture thread could not be created. "
                                       "Channel number: 1"));
}

TEST_F(Starting, WorksAgainAfterAThreadThatCouldNotBeCreated) {
  channel.starts = false;
  start(eCaptureLive);
  EXPECT_TRUE(channel.StopCapture());
  channel.starts = true;
  EXPECT_TRUE(start(eCaptureLive));
}

TEST_F(Starting, FromACallbackAfterTheClientsStopIsRefused) {
  Failure failure;
  client.on_stop = [&] { failure = failure_of([this] { start(eCaptureLive); }); };
  stop_after(1);
  capture(eCaptureLive);
  EXPECT_EQ(failure, Failure(77, ""));
}

struct Stopping : test::StillBench {};

TEST_F(Stopping, AnIdleChannelSucceedsAnyNumberOfTimes) {
  EXPECT_TRUE(channel.StopCapture());
  EXPECT_TRUE(channel.StopCapture());
  EXPECT_THAT(journal.entries(), IsEmpty());
}

TEST_F(Stopping, TwiceInARowSucceeds) {
  start(eCaptureLive);
  EXPECT_TRUE(channel.StopCapture());
  EXPECT_TRUE(channel.StopCapture());
}

TEST_F(Stopping, AThreadThatEndedWithANumberIsNoSuccess) {
  start(eCaptureLive);
  channel.result = 1;
  EXPECT_FALSE(channel.StopCapture());
}

TEST_F(Stopping, FromACallbackFailsWithNumber65) {
  Failure failure;
  client.on_live = [&](const Client::Image&) {
    failure = failure_of([this] { channel.StopCapture(); });
    ask_to_stop();
  };
  capture(eCaptureLive);
  EXPECT_EQ(failure, Failure(65, "The scanner has invalid state."));
}

TEST_F(Stopping, InTheStopCallbackAfterAnErrorFailsWithNumber65) {
  Failure failure;
  client.on_stop = [&] { failure = failure_of([this] { channel.StopCapture(); }); };
  scanner.when("InitializeSDK", [](utilities::ClSimpleBitmap&) { throw ClLXException("no", 1); });
  capture(eCaptureLive);
  EXPECT_EQ(failure.first, 65);
}

TEST_F(Stopping, InTheStopCallbackAfterTheClientsStopDoesNothing) {
  bool stopped = false;
  client.on_stop = [&] { stopped = channel.StopCapture(); };
  stop_after(1);
  capture(eCaptureLive);
  EXPECT_TRUE(stopped);
}

// Settings.

TEST(ChannelSettings, AFilterIsStoredAndMakesTheChannelDirty) {
  ClFrameGrabberChannel channel;
  channel.m_bDirty = false;
  channel.SetFilter(kFilter);
  EXPECT_EQ(channel.m_eFilter, kFilter);
  EXPECT_TRUE(channel.m_bDirty);
}

TEST(ChannelSettings, AFilterDuringCaptureIsAcceptedWhileTheColourModeIs0) {
  ClFrameGrabberChannel channel;
  channel.m_bRunning = true;
  channel.SetFilter(kFilter);
  EXPECT_EQ(channel.m_eFilter, kFilter);
}

TEST(ChannelSettings, AFilterDuringColourCaptureIsRefused) {
  ClFrameGrabberChannel channel;
  channel.SetCamera(eCamera3, kColor);
  channel.m_bRunning = true;
  EXPECT_EQ(failure_of([&] { channel.SetFilter(kFilter); }),
            Failure(21, "The filter can not be applied"));
  EXPECT_EQ(channel.m_eFilter, 0U);
}

TEST(ChannelSettings, NoFilterIsAcceptedDuringColourCapture) {
  ClFrameGrabberChannel channel;
  channel.SetCamera(eCamera3, kColor);
  channel.m_bRunning = true;
  EXPECT_EQ(failure_of([&] { channel.SetFilter(eFilterNone); }).first, 0);
}

TEST(ChannelSettings, AFilterOnAnIdleColourChannelIsAccepted) {
  ClFrameGrabberChannel channel;
  channel.SetCamera(eCamera3, kColor);
  channel.SetFilter(kFilter);
  EXPECT_EQ(channel.m_eFilter, kFilter);
}

TEST(ChannelSettings, ACameraIsStoredWithItsParametersAndLeavesTheChannelClean) {
  ClFrameGrabberChannel channel;
  channel.m_bDirty = false;
  channel.SetCamera(eCamera5, kColor);
  EXPECT_EQ(channel.m_Camera.m_nWidth, 610U);
  EXPECT_EQ(channel.m_eColorMode, kColor);
  EXPECT_TRUE(channel.CheckCameraSet());
  EXPECT_FALSE(channel.m_bDirty);
}

TEST(ChannelSettings, TheOfferedCameraCountsAsNoneSet) {
  ClFrameGrabberChannel channel;
  channel.SetCamera(eCamera8, eColorModeGray);
  EXPECT_FALSE(channel.CheckCameraSet());
}

TEST(ChannelSettings, AColourModeWithAFilterIsRefused) {
  ClFrameGrabberChannel channel;
  channel.SetFilter(kFilter);
  EXPECT_EQ(failure_of([&] { channel.SetCamera(eCamera5, kColor); }),
            Failure(21, "The filter can not be applied"));
  EXPECT_FALSE(channel.CheckCameraSet());
}

TEST(ChannelSettings, ACameraIsAcceptedDuringCaptureAndWithAFilterInGray) {
  ClFrameGrabberChannel channel;
  channel.SetFilter(kFilter);
  channel.m_bRunning = true;
  channel.SetCamera(eCamera5, eColorModeGray);
  EXPECT_TRUE(channel.CheckCameraSet());
}

TEST(ChannelSettings, AResolutionIsStoredAndMakesTheChannelDirty) {
  ClFrameGrabberChannel channel;
  channel.m_bDirty = false;
  channel.SetResolution(ClImageResolution(19685, 19685));
  EXPECT_EQ(channel.m_Resolution, ClImageResolution(19685, 19685));
  EXPECT_TRUE(channel.m_bDirty);
}

TEST(ChannelSettings, TheAspectRatioIsNeverSupported) {
  ClFrameGrabberChannel channel;
  EXPECT_EQ(failure_of([&] { channel.SetAspectRatio(1.0, 1.0); }),
            Failure(14, "This property or function is not supported by frame grabber"));
}

TEST(ChannelSettings, FreezingShows) {
  ClFrameGrabberChannel channel;
  channel.m_bFreeze = true;
  EXPECT_TRUE(channel.IsFreezed());
}

TEST(ChannelSettings, ChangeCameraChangesTheRecord) {
  ClFrameGrabberChannel channel;
  channel.ChangeCamera([](ClLXCamera& camera) { camera.m_nWidth = 300; });
  EXPECT_EQ(channel.m_Camera.m_nWidth, 300U);
}

}  // namespace
}  // namespace Osv::lx
