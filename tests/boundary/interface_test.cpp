#include <gtest/gtest.h>

#include <vector>

#include "ostrevanhvk3/framegrabber.h"
#include "support/virtual_slots.h"

namespace Osv::lx {
namespace {

using test::numbers_up_to;
using test::slot_of;

TEST(Interface, TheOperationsHaveTheirSlotsInTheAgreedOrder) {
  using Grabber = ClFramegrabber;
  const std::vector<std::size_t> slots = {slot_of(&Grabber::GetInfo),
                                          slot_of(&Grabber::GetVersion),
                                          slot_of(&Grabber::FreeImage),
                                          slot_of(&Grabber::GetLastError),
                                          slot_of(&Grabber::SetCamera),
                                          slot_of(&Grabber::GetImage),
                                          slot_of(&Grabber::StartCapture),
                                          slot_of(&Grabber::StopCapture),
                                          slot_of(&Grabber::SetFilter),
                                          slot_of(&Grabber::RefreshBackGround),
                                          slot_of(&Grabber::SetResolution),
                                          slot_of(&Grabber::SetFGProperty),
                                          slot_of(&Grabber::GetFGProperty),
                                          slot_of(&Grabber::Freeze),
                                          slot_of(&Grabber::AvailableCameras),
                                          slot_of(&Grabber::AvailableColorModes),
                                          slot_of(&Grabber::AvailableDetections),
                                          slot_of(&Grabber::AvailableFilters),
                                          slot_of(&Grabber::AvailableProperties),
                                          slot_of(&Grabber::EnableEvents),
                                          slot_of(&Grabber::WriteEEPROM),
                                          slot_of(&Grabber::ReadEEPROM),
                                          slot_of(&Grabber::SetAspectRatio),
                                          slot_of(&Grabber::AvailableDevices),
                                          slot_of(&Grabber::SetActiveDevice),
                                          slot_of(&Grabber::GetActiveDevice),
                                          slot_of(&Grabber::ShowDialog),
                                          slot_of(&Grabber::SaveSetting),
                                          slot_of(&Grabber::AvailableDialogs),
                                          slot_of(&Grabber::SetFGPropertyEx),
                                          slot_of(&Grabber::GetFGPropertyEx),
                                          slot_of(&Grabber::AvailablePropertiesEx),
                                          slot_of(&Grabber::SetCallbacks),
                                          slot_of(&Grabber::ContaminationDetection),
                                          slot_of(&Grabber::CurrentFrameInfo)};
  EXPECT_EQ(slots, numbers_up_to(35));
}

TEST(Interface, TheEnumerationsKeepTheNumbersThatClientsKnow) {
  EXPECT_EQ(eCaptureLive, 0U);
  EXPECT_EQ(eCapturePlain, 1U);
  EXPECT_EQ(eCaptureRolled, 2U);
  EXPECT_EQ(eCaptureFastPlain, 3U);
  EXPECT_EQ(eCapturePreview, 4U);
  EXPECT_EQ(eCapturePreviewAutoDetect, 5U);
  EXPECT_EQ(ePropChannelCount, 3U);
  EXPECT_EQ(ePropLiveliness, 6U);
  EXPECT_EQ(ePropRedLED, 7U);
  EXPECT_EQ(ePropGreenLED, 8U);
  EXPECT_EQ(ePropFakeDetection, 12U);
  EXPECT_EQ(ePropLowContrastImage, 13U);
  EXPECT_EQ(eColorModeGray, 0U);
  EXPECT_EQ(eFilterNone, 0U);
  EXPECT_EQ(eCamera8, 8U);
  EXPECT_EQ(eFG_HVK3, 19U);
  EXPECT_EQ(eFG_HVK3_FakeFinger, 0U);
}

}  // namespace
}  // namespace Osv::lx
