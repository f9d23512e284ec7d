#include "boundary/hvk3_framegrabber.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <future>
#include <vector>

#include "boundary/facade_fixture.h"
#include "foundation/logging_client.h"
#include "support/virtual_slots.h"

namespace Osv::lx {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr char kEarlier[] = "an earlier text";
constexpr char kNotConnected[] = "The scanner is not connected to the host";
constexpr char kInitializationFailed[] = "Initialization failed.";

// ---- the object as its clients know it

TEST_F(Facade, ItsOwnVirtualOperationsFollowThoseOfTheInterface) {
  using Grabber = ClOstrevanHVK3Framegrabber;
  EXPECT_EQ(test::slot_of(&Grabber::CurrentFrameInfo), 34U);
  EXPECT_EQ(test::slot_of(&Grabber::Initizalize), 35U);
  EXPECT_EQ(test::slot_of(&Grabber::Uninitialize), 36U);
  EXPECT_EQ(test::slot_of(&Grabber::FreezeSDK), 37U);
}

TEST_F(Facade, TheInterfaceStandsFirstInItThenTheListsThenTheDriver) {
  const auto place = [this](const auto& base) {
    return reinterpret_cast<const char*>(&base) - reinterpret_cast<const char*>(&grabber);
  };
  const auto interface = place(static_cast<const ClFramegrabber&>(grabber));
  const auto lists = place(static_cast<const ClFramegrabberImpl&>(grabber));
  const auto driver = place(static_cast<const ClOstrevanHVK3SDK&>(grabber));
  EXPECT_EQ(interface, 0);
  EXPECT_LT(interface, lists);
  EXPECT_LT(lists, driver);
}

// ---- the capability lists

TEST_F(Facade, OffersCamera8AndGray) {
  std::array<eCameraIDs, 5> cameras{};
  unsigned long count = cameras.size();
  EXPECT_EQ(grabber.AvailableCameras(cameras.data(), count), 0U);
  EXPECT_EQ(count, 1U);
  EXPECT_EQ(cameras[0], eCamera8);
  std::array<eColorModeIDs, 1> modes = {eColorModeIDs(7)};
  EXPECT_EQ(grabber.AvailableColorModes(modes.data(), count), 0U);
  EXPECT_EQ(count, 1U);
  EXPECT_EQ(modes[0], eColorModeGray);
}

TEST_F(Facade, OffersLiveAndPlainCaptureOnly) {
  std::array<eCaptureModeIDs, 2> modes{};
  unsigned long count = modes.size();
  EXPECT_EQ(grabber.AvailableDetections(modes.data(), count), 0U);
  EXPECT_THAT(modes, ElementsAre(eCaptureLive, eCapturePlain));
  EXPECT_FALSE(grabber.DetectionCheck(eCaptureRolled));
}

TEST_F(Facade, OffersNoFilterButNone) {
  std::array<eFilterIDs, 1> filters = {eFilterIDs(7)};
  unsigned long count = filters.size();
  EXPECT_EQ(grabber.AvailableFilters(filters.data(), count), 0U);
  EXPECT_EQ(filters[0], eFilterNone);
}

TEST_F(Facade, OffersItsSixPropertiesInTheirOrder) {
  std::array<ePropertyIDs, 6> properties{};
  unsigned long count = properties.size();
  EXPECT_EQ(grabber.AvailableProperties(properties.data(), count), 0U);
  EXPECT_EQ(count, 6U);
  EXPECT_THAT(properties, ElementsAre(ePropChannelCount, ePropLiveliness, ePropRedLED,
                                      ePropGreenLED, ePropFakeDetection, ePropLowContrastImage));
}

TEST_F(Facade, TheExtendedPropertiesAreTheSameSix) {
  std::array<ePropertyIDs, 6> properties{};
  unsigned long count = properties.size();
  EXPECT_EQ(grabber.AvailablePropertiesEx(properties.data(), count), 0U);
  EXPECT_EQ(count, 6U);
  EXPECT_THAT(properties, ElementsAre(ePropChannelCount, ePropLiveliness, ePropRedLED,
                                      ePropGreenLED, ePropFakeDetection, ePropLowContrastImage));
}

TEST_F(Facade, AskingAListForItsSizeTouchesNoStoredText) {
  grabber.SetLastFGError(1, kEarlier);
  unsigned long count = 0;
  EXPECT_EQ(grabber.AvailableProperties(nullptr, count), 0x10000011U);
  EXPECT_EQ(count, 6U);
  EXPECT_EQ(grabber.AvailableProperties(nullptr, count), 0x1000003CU);
  EXPECT_EQ(count, 6U);
  EXPECT_EQ(grabber.last_text(), kEarlier);
}

TEST_F(Facade, EveryListAnswersWithItsSize) {
  const auto size_of = [&](auto list) {
    unsigned long count = 0;
    EXPECT_EQ((grabber.*list)(nullptr, count), 0x10000011U);
    return count;
  };
  EXPECT_EQ(size_of(&ClFramegrabber::AvailableCameras), 1U);
  EXPECT_EQ(size_of(&ClFramegrabber::AvailableColorModes), 1U);
  EXPECT_EQ(size_of(&ClFramegrabber::AvailableDetections), 2U);
  EXPECT_EQ(size_of(&ClFramegrabber::AvailableFilters), 1U);
  EXPECT_EQ(size_of(&ClFramegrabber::AvailablePropertiesEx), 6U);
}

// ---- version and last error

TEST_F(Facade, TheVersionComesOutAndItsRefusalsCarryABitMore) {
  std::array<char, 11> text{};
  unsigned long size = 10;
  EXPECT_EQ(grabber.GetVersion(text.data(), size), 0x30000011U);
  EXPECT_EQ(size, 11U);
  EXPECT_EQ(grabber.GetVersion(nullptr, size), 0x3000003CU);
  EXPECT_EQ(size, 11U);
  EXPECT_EQ(grabber.GetVersion(text.data(), size), 0U);
  EXPECT_STREQ(text.data(), "2.0.1425.2");
}

TEST_F(Facade, TheVersionsSizeComesBackAlsoWithMoreRoom) {
  std::array<char, 20> text{};
  unsigned long size = text.size();
  EXPECT_EQ(grabber.GetVersion(text.data(), size), 0U);
  EXPECT_EQ(size, 11U);
}

TEST_F(Facade, ARefusedVersionKeepsTheStoredText) {
  grabber.SetLastFGError(1, kEarlier);
  unsigned long size = 0;
  grabber.GetVersion(nullptr, size);
  EXPECT_EQ(grabber.last_text(), kEarlier);
}

TEST_F(Facade, TheLastErrorFollowsTheRuleOfBufferSizes) {
  grabber.SetLastFGError(1, "twenty characters ok");
  std::array<char, 21> text{};
  unsigned long size = 20;
  EXPECT_EQ(grabber.GetLastError(text.data(), size), 0x10000011U);
  EXPECT_EQ(size, 21U);
  EXPECT_EQ(grabber.GetLastError(nullptr, size), 0x1000003CU);
  EXPECT_EQ(size, 21U);
  EXPECT_EQ(grabber.GetLastError(text.data(), size), 0U);
  EXPECT_STREQ(text.data(), "twenty characters ok");
}

TEST_F(Facade, ARefusedLastErrorStaysStored) {
  grabber.SetLastFGError(1, kEarlier);
  unsigned long size = 0;
  grabber.GetLastError(nullptr, size);
  EXPECT_EQ(grabber.last_text(), kEarlier);
  EXPECT_EQ(grabber.last_number(), 1U);
}

TEST_F(Facade, ASuccessKeepsTheStoredText) {
  grabber.SetLastFGError(1, kEarlier);
  EXPECT_EQ(grabber.Freeze(1, false), 0U);
  EXPECT_EQ(grabber.last_text(), kEarlier);
}

// ---- operations that this scanner does not have

TEST_F(Facade, WhatThisScannerLacksIsABare14OrABare22AndKeepsTheStoredText) {
  grabber.SetLastFGError(1, kEarlier);
  unsigned long size = 3;
  EXPECT_EQ(grabber.WriteEEPROM(nullptr, size), 14U);
  EXPECT_EQ(grabber.ReadEEPROM(nullptr, size), 14U);
  EXPECT_EQ(grabber.SetAspectRatio(1, 1.0, 2.0), 14U);
  EXPECT_EQ(grabber.ShowDialog(eDlgIDs{}, 0), 22U);
  EXPECT_EQ(grabber.SaveSetting(1, 0), 22U);
  EXPECT_EQ(grabber.AvailableDialogs(0, nullptr, size), 22U);
  EXPECT_EQ(size, 3U);
  EXPECT_EQ(grabber.last_text(), kEarlier);
}

TEST_F(Facade, TheResolutionCannotBeSet) {
  EXPECT_EQ(grabber.SetResolution(1, ClImageResolution(1, 1)), 0x1000000EU);
  EXPECT_EQ(grabber.last_text(), "This property or function is not supported by frame grabber");
}

TEST_F(Facade, RefreshingTheBackgroundChangesNothing) {
  grabber.channel().m_bDirty = false;
  EXPECT_EQ(grabber.RefreshBackGround(1), 0U);
  EXPECT_FALSE(grabber.channel().m_bDirty);
  EXPECT_EQ(grabber.channel().m_Background.BI(), nullptr);
  EXPECT_EQ(bench.count("ftrScanGetImageByVariableDose"), 0U);
}

// ---- cameras, filters, modes

TEST_F(Facade, AnUnknownCameraIsReportedAndSelectedAllTheSame) {
  EXPECT_EQ(grabber.SetCamera(1, eCamera5, eColorModeGray), 0x10000003U);
  EXPECT_EQ(grabber.last_text(), "The camera ID is unknown or is not supported by frame grabber");
  EXPECT_EQ(grabber.channel().m_Camera.m_eCamera, eCamera5);
}

TEST_F(Facade, AKnownCameraIsSelectedInSilence) {
  EXPECT_EQ(grabber.SetCamera(1, eCamera8, eColorModeGray), 0U);
  EXPECT_EQ(grabber.last_text(), "");
}

TEST_F(Facade, ARefusalOfTheDriverOutweighsAnUnknownCamera) {
  EXPECT_EQ(grabber.SetCamera(1, eCamera5, eColorModeIDs(1)), 0x10000009U);
  EXPECT_EQ(grabber.last_text(), "The frame grabber does not support this color mode");
}

TEST_F(Facade, AnUnknownFilterIsReportedAndSetAllTheSame) {
  EXPECT_EQ(grabber.SetFilter(1, eFilterIDs(3)), 0x1000000BU);
  EXPECT_EQ(grabber.last_text(), "The filter ID bad or framegrabber does not support");
  EXPECT_EQ(grabber.channel().m_eFilter, eFilterIDs(3));
}

TEST_F(Facade, AChannelThatIsNotThereOutweighsAnUnknownFilter) {
  EXPECT_EQ(grabber.SetFilter(2, eFilterIDs(3)), 0x10000004U);
  EXPECT_EQ(grabber.last_text(), "Incorrect channel number for frame grabber");
  EXPECT_EQ(grabber.channel().m_eFilter, eFilterNone);
}

TEST_F(Facade, AModeThatIsNotOfferedStartsNoWorkerAndDoesNotReachTheDriver) {
  EXPECT_EQ(grabber.StartCapture(1, 1, eCaptureRolled, nullptr, nullptr, nullptr, nullptr, nullptr),
            0x1000000AU);
  EXPECT_EQ(grabber.last_text(),
            "The detection ID bad or frame grabber does not support this detection");
  EXPECT_FALSE(grabber.channel().m_bRunning);
  EXPECT_EQ(grabber.channel().m_pDetection, nullptr);
  EXPECT_THAT(journal("OsvLFLog"), ::testing::Not(::testing::Contains(HasSubstr("StartCapture"))));
}

TEST_F(Facade, FreezingSetsTheChannelsFlagAndClearsItAgain) {
  EXPECT_EQ(grabber.Freeze(1, true), 0U);
  EXPECT_TRUE(grabber.channel().IsFreezed());
  EXPECT_EQ(grabber.Freeze(1, false), 0U);
  EXPECT_FALSE(grabber.channel().IsFreezed());
}

// ---- channel numbers

TEST_F(Facade, AChannelThatIsNotThereIsRefusedByEveryOperationOfAChannel) {
  unsigned char* image = nullptr;
  for (const unsigned int channel : {0U, 2U}) {
    const std::vector<unsigned long> results = {
        grabber.GetImage(channel, &image),
        grabber.StopCapture(channel),
        grabber.StartCapture(1, channel, eCaptureLive, nullptr, nullptr, nullptr, nullptr, nullptr),
        grabber.SetFilter(channel, eFilterNone),
        grabber.SetCamera(channel, eCamera8, eColorModeGray),
        grabber.Freeze(channel, true),
        grabber.SetCallbacks(channel, nullptr, nullptr)};
    EXPECT_THAT(results, ::testing::Each(0x10000004U));
    EXPECT_EQ(grabber.last_text(), "Incorrect channel number for frame grabber");
  }
}

TEST_F(FacadeWithoutScanner, AnExtendedPropertyOfALargerChannelIsRefusedAndNotTouched) {
  unsigned long value = 5;
  EXPECT_EQ(grabber.SetFGPropertyEx(2, ePropRedLED, 1), 0x10000004U);
  EXPECT_EQ(grabber.GetFGPropertyEx(2, ePropRedLED, value), 0x10000004U);
  EXPECT_EQ(grabber.last_text(), "Incorrect channel number for frame grabber");
  EXPECT_EQ(value, 5U);
  EXPECT_THAT(journal("ftrScanGetInterfaces"), IsEmpty());
}

TEST_F(FacadeWithoutScanner, AnExtendedPropertyOfChannel0Or1Proceeds) {
  unsigned long value = 5;
  for (const unsigned int channel : {0U, 1U}) {
    EXPECT_EQ(grabber.SetFGPropertyEx(channel, ePropRedLED, 1), 0x10000002U);
    EXPECT_EQ(grabber.GetFGPropertyEx(channel, ePropRedLED, value), 0x10000002U);
  }
}

/// Properties of the test's own, for what the extended operations make of them.
class OwnProperties : public FacadeProbe {
 public:
  unsigned long AvailableProperties(ePropertyIDs* list, unsigned long& count) override {
    *list = ePropGreenLED;
    count = 1;
    return 99;
  }
  unsigned long SetFGProperty(ePropertyIDs property, unsigned int value) override {
    m_nProperty = property;
    m_nValue = value;
    return 0;
  }
  unsigned long GetFGProperty(ePropertyIDs property, unsigned int& value) override {
    m_nProperty = property;
    m_nValue = value;
    value = 100;
    return 0;
  }

  ePropertyIDs m_nProperty{};
  unsigned int m_nValue = 0;
};

TEST_F(Facade, AnExtendedValueIsCutTo32BitsOnItsWayIn) {
  OwnProperties own;
  EXPECT_EQ(own.SetFGPropertyEx(1, ePropGreenLED, 0x500000007UL), 0U);
  EXPECT_EQ(own.m_nProperty, ePropGreenLED);
  EXPECT_EQ(own.m_nValue, 7U);
}

TEST_F(Facade, OnlyTheLow32BitsOfAnExtendedValueChangeOnItsWayOut) {
  OwnProperties own;
  unsigned long value = 0x500000007UL;
  EXPECT_EQ(own.GetFGPropertyEx(0, ePropRedLED, value), 0U);
  EXPECT_EQ(own.m_nValue, 7U);
  EXPECT_EQ(value, 0x500000064UL);
}

TEST_F(Facade, TheExtendedPropertiesComeFromTheOperationOfTheOthers) {
  OwnProperties own;
  std::array<ePropertyIDs, 6> properties{};
  unsigned long count = properties.size();
  EXPECT_EQ(own.AvailablePropertiesEx(properties.data(), count), 99U);
  EXPECT_EQ(properties[0], ePropGreenLED);
  EXPECT_EQ(count, 1U);
}

// ---- the scanner result rule

TEST_F(FacadeWithoutScanner, OperationsThatNeedTheScannerSayThatItIsNotConnected) {
  unsigned int value = 0;
  double level = 0;
  const auto says_so = [&](unsigned long result) {
    EXPECT_EQ(result, 0x10000002U);
    EXPECT_EQ(grabber.last_text(), kNotConnected);
    grabber.SetLastFGError(0, "");
  };
  says_so(grabber.SetFGProperty(ePropRedLED, 1));
  says_so(grabber.GetFGProperty(ePropRedLED, value));
  says_so(grabber.ContaminationDetection(1, &level));
}

TEST_F(FacadeWithoutScanner, OperationsWithATextOfTheirOwnKeepItForAMissingScanner) {
  unsigned long size = 0;
  unsigned char* image = nullptr;
  EXPECT_EQ(grabber.GetInfo(nullptr, size), 0x10000002U);
  EXPECT_EQ(grabber.last_text(), "More data are available");
  EXPECT_EQ(grabber.GetImage(1, &image), 0x10000002U);
  EXPECT_EQ(grabber.last_text(), "GetImage function failed.");
  EXPECT_EQ(grabber.StartCapture(1, 1, eCaptureLive, nullptr, nullptr, nullptr, nullptr, nullptr),
            0x10000002U);
  EXPECT_EQ(grabber.last_text(), "Failed start capturing.");
  EXPECT_EQ(image, nullptr);
}

TEST_F(FacadeWithoutScanner, ACameraIsSelectedWithoutAScanner) {
  EXPECT_EQ(grabber.SetCamera(1, eCamera8, eColorModeGray), 0U);
}

TEST_F(FacadeWithoutScanner, AFeatureWithoutAScannerIsABare2AndKeepsTheStoredText) {
  grabber.SetLastFGError(1, kEarlier);
  osvlx3_feature feature{};
  EXPECT_EQ(grabber.GetFeature(1, &feature), 2U);
  EXPECT_EQ(grabber.SetFeature(1, &feature), 2U);
  EXPECT_EQ(grabber.last_text(), kEarlier);
}

TEST_F(Facade, AFeatureOfAnotherChannelIsABare2AndTouchesNoScanner) {
  grabber.SetLastFGError(1, kEarlier);
  osvlx3_feature feature{};
  for (const unsigned int channel : {0U, 2U}) {
    EXPECT_EQ(grabber.GetFeature(channel, &feature), 2U);
    EXPECT_EQ(grabber.SetFeature(channel, &feature), 2U);
  }
  EXPECT_EQ(grabber.last_text(), kEarlier);
  EXPECT_THAT(journal("ftrScanGetInterfaces"), IsEmpty());
}

TEST_F(Facade, ANumberOfTheDriverOtherThan2IsCalledAFailedInitialization) {
  unsigned long count = 0;
  EXPECT_EQ(grabber.AvailableDevices(nullptr, count), 0x10000011U);
  EXPECT_EQ(grabber.last_text(), kInitializationFailed);
  EXPECT_EQ(grabber.AvailableDevices(nullptr, count), 0x1000003CU);
  EXPECT_EQ(grabber.last_text(), kInitializationFailed);
}

TEST_F(Facade, AnOpeningThatFailsWithAScannersNumberReportsThatNumber) {
  bench.set_faults("ftrScanOpenDeviceOnInterface call 3 fails with 5");  // 1 test, 2 list, 3 open
  EXPECT_EQ(grabber.SetActiveDevice(0), 0x10000005U);
  EXPECT_EQ(grabber.last_text(), kInitializationFailed);
}

TEST_F(Facade, ADeviceThatIsNoScannerIsRefusedWith27) {
  EXPECT_EQ(grabber.SetActiveDevice(5), 0x1000001BU);
  EXPECT_EQ(grabber.last_text(),
            "The device index out of range or is not supported by frame grabber");
}

TEST_F(Facade, TheActiveDeviceIs0BeforeAnyChoice) {
  unsigned long index = 7;
  EXPECT_EQ(grabber.GetActiveDevice(index), 0U);
  EXPECT_EQ(index, 0U);
}

// ---- images and descriptions

TEST_F(Facade, ANullImageIsRefusedWithTheTextOfTheOperation) {
  EXPECT_EQ(grabber.GetImage(1, nullptr), 0x1000003CU);
  EXPECT_EQ(grabber.last_text(), "GetImage function failed.");
}

TEST_F(Facade, AnImageComesOutAndGoesBack) {
  unsigned char* image = nullptr;
  ASSERT_EQ(grabber.GetImage(1, &image), 0U);
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(grabber.FreeImage(image), 0U);
}

TEST_F(Facade, AnImageAndACaptureThatSucceedKeepTheStoredText) {
  grabber.SetLastFGError(1, kEarlier);
  unsigned char* image = nullptr;
  ASSERT_EQ(grabber.GetImage(1, &image), 0U);
  grabber.FreeImage(image);
  ASSERT_EQ(grabber.StartCapture(1, 1, eCaptureLive, nullptr, nullptr, nullptr, nullptr, nullptr),
            0U);
  EXPECT_EQ(grabber.StopCapture(1), 0U);
  EXPECT_EQ(grabber.last_text(), kEarlier);
}

TEST_F(Facade, GivingNothingBackIsFine) { EXPECT_EQ(grabber.FreeImage(nullptr), 0U); }

TEST_F(Facade, ADescriptionThatDoesNotFitSaysThatThereIsMore) {
  unsigned long size = 0;
  EXPECT_EQ(grabber.GetInfo(nullptr, size), 0x10000011U);
  EXPECT_EQ(grabber.last_text(), "More data are available");
  EXPECT_EQ(grabber.GetInfo(nullptr, size), 0x1000003CU);
}

TEST_F(Facade, TheFrameInformationLetsFailuresThroughToTheExportedFunction) {
  EXPECT_THROW(grabber.CurrentFrameInfo(0, 0, nullptr), ClLXException);
  double score = -1;
  EXPECT_EQ(grabber.CurrentFrameInfo(0, 0, &score), 0U);
  EXPECT_EQ(score, 0.0);
}

TEST_F(Facade, TheEventCallbackIsTakenWithItsHandleAndPointer) {
  int handle = 0;
  const auto note = [](int own, unsigned int, eFGs, unsigned int, void* user) {
    *static_cast<int*>(user) = own;
  };
  EXPECT_EQ(grabber.EnableEvents(1, 0xFFFFFFFE, note, &handle), 0U);
  grabber.OnFakeFinger();
  EXPECT_EQ(handle, -2);
}

TEST_F(Facade, StoppingAChannelThatDoesNotCaptureSucceedsAgainAndAgain) {
  EXPECT_EQ(grabber.StopCapture(1), 0U);
  EXPECT_EQ(grabber.StopCapture(1), 0U);
}

// ---- the logging facility

TEST_F(Facade, WithTheLoggingFacilityLinesReachIt) {
  bench.clear_journal();
  grabber.StopCapture(1);
  EXPECT_THAT(journal("OsvLFLog"),
              ElementsAre(AllOf(HasSubstr("level 7"),
                                HasSubstr("'KR9 scanner. Calling StopCapture function. Channel "
                                          "number: 1'"))));
}

TEST_F(Facade, WithoutTheLoggingFacilityTheFrameGrabberIsBuiltAndSilent) {
  grabber.Uninitialize();
  libraries.make_absent("libostrevanlf.so");
  bench.clear_journal();
  FacadeProbe silent;
  EXPECT_EQ(silent.Initizalize(), 0U);
  EXPECT_EQ(silent.StopCapture(1), 0U);
  EXPECT_THAT(journal("OsvLFLog"), IsEmpty());
}

TEST_F(Facade, UninitializingStopsCaptureAndLetsTheLoggingFacilityGo) {
  ASSERT_NE(utilities::ClLoggingFacilityClient::m_fpLogInstance, nullptr);
  // Frozen, since a worker that fetches could want the lock that is held while it is stopped.
  grabber.Freeze(1, true);
  ASSERT_EQ(grabber.StartCapture(1, 1, eCaptureLive, nullptr, nullptr, nullptr, nullptr, nullptr),
            0U);
  EXPECT_EQ(grabber.Uninitialize(), 0U);
  EXPECT_FALSE(grabber.channel().m_bRunning);
  EXPECT_EQ(utilities::ClLoggingFacilityClient::m_fpLogInstance, nullptr);
}

/// Uninitializes the frame grabber inside a live image callback, and keeps what came of it.
struct InsideACallback {
  FacadeProbe& grabber;
  std::promise<unsigned long> result;

  static void live(int, unsigned int, unsigned char*, void* user) {
    auto& inside = *static_cast<InsideACallback*>(user);
    inside.grabber.Freeze(1, true);  // so that it happens once
    inside.result.set_value(inside.grabber.Uninitialize());
  }
};

TEST_F(Facade, UninitializingInsideACallbackIsRefusedAndTheLoggingFacilityStays) {
  InsideACallback inside = {grabber, {}};
  ASSERT_EQ(grabber.StartCapture(1, 1, eCaptureLive, &InsideACallback::live, nullptr, nullptr,
                                 nullptr, &inside),
            0U);
  EXPECT_EQ(inside.result.get_future().get(), 0x10000041U);
  EXPECT_EQ(grabber.last_text(), "The scanner has invalid state.");
  EXPECT_NE(utilities::ClLoggingFacilityClient::m_fpLogInstance, nullptr);
  EXPECT_EQ(grabber.StopCapture(1), 0U);
}

}  // namespace
}  // namespace Osv::lx
