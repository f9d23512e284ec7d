#include "boundary/framegrabber_impl.h"

#include <gtest/gtest.h>

#include <array>

namespace Osv::lx {
namespace {

class Lists : public ClFramegrabberImpl {
 public:
  using ClFramegrabberImpl::m_vCameras;
  using ClFramegrabberImpl::m_vDetections;
  using ClFramegrabberImpl::m_vFilters;
  using ClFramegrabberImpl::m_vProperties;
};

TEST(CapabilityLists, TooSmallACountIsRefusedWithTheNumberOfElements) {
  Lists lists;
  lists.m_vProperties = {ePropRedLED, ePropGreenLED};
  std::array<ePropertyIDs, 2> list{};
  unsigned long count = 1;
  EXPECT_EQ(lists.AvailableProperties(list.data(), count), 17U);
  EXPECT_EQ(count, 2U);
}

TEST(CapabilityLists, ANullListOfSufficientCountIsRefusedWithTheNumberOfElements) {
  Lists lists;
  lists.m_vProperties = {ePropRedLED, ePropGreenLED};
  unsigned long count = 9;
  EXPECT_EQ(lists.AvailableProperties(nullptr, count), 60U);
  EXPECT_EQ(count, 2U);
}

TEST(CapabilityLists, TheElementsComeInStoredOrder) {
  Lists lists;
  lists.m_vProperties = {ePropGreenLED, ePropChannelCount};
  std::array<ePropertyIDs, 2> list{};
  unsigned long count = 2;
  EXPECT_EQ(lists.AvailableProperties(list.data(), count), 0U);
  EXPECT_EQ(list[0], ePropGreenLED);
  EXPECT_EQ(list[1], ePropChannelCount);
}

TEST(CapabilityLists, RoomForMoreIsFineAndTheCountSaysHowManyThereAre) {
  Lists lists;
  lists.m_vCameras = {eCamera8};
  std::array<eCameraIDs, 5> list{};
  unsigned long count = list.size();
  EXPECT_EQ(lists.AvailableCameras(list.data(), count), 0U);
  EXPECT_EQ(count, 1U);
  EXPECT_EQ(list[0], eCamera8);
}

TEST(CapabilityLists, AskingAnEmptyListForItsSizeGivesANullPointerRefusal) {
  unsigned long count = 0;
  EXPECT_EQ(ClFramegrabberImpl().AvailablePropertiesEx(nullptr, count), 60U);
  EXPECT_EQ(count, 0U);
}

TEST(CapabilityLists, AnEmptyListMakesEachCheckFalse) {
  const ClFramegrabberImpl lists;
  EXPECT_FALSE(lists.CameraCheck(eCamera8));
  EXPECT_FALSE(lists.DetectionCheck(eCaptureLive));
  EXPECT_FALSE(lists.FilterCheck(eFilterNone));
}

TEST(CapabilityLists, AnIdIsCheckedAgainstItsOwnList) {
  Lists lists;
  lists.m_vDetections = {eCaptureLive, eCapturePlain};
  EXPECT_TRUE(lists.DetectionCheck(eCapturePlain));
  EXPECT_FALSE(lists.DetectionCheck(eCaptureRolled));
  EXPECT_FALSE(lists.CameraCheck(eCamera1));
}

}  // namespace
}  // namespace Osv::lx
