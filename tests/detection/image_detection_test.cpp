#include "detection/image_detection.h"

#include <gtest/gtest.h>

#include <memory>

#include "detection/fast_plain_finger_detection.h"
#include "detection/live_detection.h"
#include "detection/plain_finger_detection.h"
#include "detection/preview_detection.h"
#include "detection/rolled_finger_lx1.h"

namespace Osv::lx {
namespace {

struct PlainProbe : ClPlainFingerDetection {
  explicit PlainProbe(const ClPlainFingerDetection& other) : ClPlainFingerDetection(other) {}
  using ClPlainFingerDetection::m_nThreshold;
};

template <typename Strategy>
void expect_strategy(unsigned int mode) {
  const std::unique_ptr<ClImageDetection> made(ClImageDetection::Create(eCaptureModeIDs{mode}));
  ASSERT_NE(made, nullptr);
  EXPECT_NE(dynamic_cast<Strategy*>(made.get()), nullptr);
  EXPECT_EQ(made->Type(), mode);
}

TEST(ImageDetection, Mode0GivesTheLiveStrategy) { expect_strategy<ClLiveDetection>(0); }

TEST(ImageDetection, Mode1GivesThePlainStrategy) { expect_strategy<ClPlainFingerDetection>(1); }

TEST(ImageDetection, Mode2GivesTheRolledStrategyThatKeepsTheDarkestColumns) {
  expect_strategy<ClRolledFingerLX1>(2);
}

TEST(ImageDetection, Mode3GivesTheFastPlainStrategy) {
  expect_strategy<ClFastPlainFingerDetection>(3);
}

TEST(ImageDetection, Mode4GivesThePreviewStrategy) { expect_strategy<ClPreviewDetection>(4); }

TEST(ImageDetection, ThePlainStrategyIsMadeWithThreshold240) {
  const std::unique_ptr<ClImageDetection> made(ClImageDetection::Create(eCapturePlain));
  const PlainProbe probe(dynamic_cast<ClPlainFingerDetection&>(*made));
  EXPECT_EQ(probe.m_nThreshold, 240U);
}

TEST(ImageDetection, AModeAbove4HasNoStrategy) {
  EXPECT_EQ(ClImageDetection::Create(eCapturePreviewAutoDetect), nullptr);
  EXPECT_EQ(ClImageDetection::Create(eCaptureModeIDs{6}), nullptr);
  EXPECT_EQ(ClImageDetection::Create(eCaptureModeIDs{0xFFFFFFFFU}), nullptr);
}

}  // namespace
}  // namespace Osv::lx
