#include <gtest/gtest.h>

#include "detection/fast_plain_finger_detection.h"
#include "detection/images.h"
#include "detection/plain_finger_detection.h"
#include "detection/rolled_finger.h"
#include "detection/rolled_finger_lx1.h"
#include "foundation/exceptions.h"
#include "foundation/system_failures.h"

namespace Osv::lx {
namespace {

using testing_support::eFailing;
using testing_support::FailingSystem;
using utilities::ClSimpleBitmap;

/// Strategies whose memory runs out.
struct WithoutMemory : testing::Test {
  /// Shows a frame of one gray level.
  bool show(unsigned char level) {
    ClSimpleBitmap in = test::gray_image(10, 10, level);
    return fast.Detect(in, out);
  }

  /// Shows one that there is no memory to keep.
  void show_in_vain(unsigned char level) {
    ClSimpleBitmap in = test::gray_image(10, 10, level);
    const FailingSystem failing(eFailing::ArrayNew);
    EXPECT_THROW(fast.Detect(in, out), CXMemoryAllocException);
  }

  ClFastPlainFingerDetection fast;
  ClSimpleBitmap out;
};

TEST_F(WithoutMemory, AFirstFrameThatCannotBeKeptIsMadeUpForByTheNext) {
  show_in_vain(250);
  EXPECT_FALSE(show(250));
  EXPECT_FALSE(show(100));
  EXPECT_TRUE(show(250));
  ASSERT_FALSE(out.Empty());
  EXPECT_EQ(*out.Pixel(), 100);
}

TEST_F(WithoutMemory, AFingerThatCannotBeKeptIsNotCounted) {
  show(250);
  show_in_vain(100);
  EXPECT_FALSE(show(250));
}

TEST_F(WithoutMemory, AFingerThatCannotBeKeptDoesNotLowerTheSum) {
  show(250);
  show_in_vain(100);
  EXPECT_FALSE(show(120));
  EXPECT_TRUE(show(250));
  ASSERT_FALSE(out.Empty());
  EXPECT_EQ(*out.Pixel(), 120);
}

TEST_F(WithoutMemory, ARollThatCannotKeepItsBackgroundTakesTheNextFrame) {
  ClRolledFinger roll;
  ClSimpleBitmap lost = test::gray_image(60, 10, 200);
  {
    const FailingSystem failing(eFailing::ArrayNew);
    EXPECT_THROW(roll.Detect(lost, out), CXMemoryAllocException);
  }
  ClSimpleBitmap kept = test::gray_image(60, 10, 250);
  ClSimpleBitmap shown = kept;
  EXPECT_FALSE(roll.Detect(kept, shown));
  EXPECT_FALSE(roll.Detect(lost, shown));
  EXPECT_TRUE(roll.Detect(kept, shown)) << "the frame before was darker, so a finger";
}

TEST_F(WithoutMemory, ARollOfColumnsThatCannotKeepItsBackgroundTakesTheNextFrame) {
  ClRolledFingerLX1 roll;
  ClSimpleBitmap lost = test::gray_image(60, 10, 225);
  {
    const FailingSystem failing(eFailing::ArrayNew);
    EXPECT_THROW(roll.Detect(lost, out), CXMemoryAllocException);
  }
  ClSimpleBitmap kept = test::gray_image(60, 10, 250);
  EXPECT_FALSE(roll.Detect(kept, out));
  EXPECT_FALSE(roll.Detect(lost, out));
  EXPECT_TRUE(roll.Detect(kept, out)) << "the frame before was darker, so a finger";
}

TEST_F(WithoutMemory, ARollOfColumnsWhoseImageCannotBeHandedOutGoesOn) {
  ClRolledFingerLX1 roll;
  ClSimpleBitmap background = test::gray_image(60, 10, 250);
  ClSimpleBitmap finger = test::gray_image(60, 10, 100);
  roll.Detect(background, out);
  roll.Detect(finger, out);
  ClSimpleBitmap none;
  {
    const FailingSystem failing(eFailing::ArrayNew);
    EXPECT_THROW(roll.Detect(finger, none), CXMemoryAllocException);
  }
  EXPECT_TRUE(roll.Detect(background, out));
  ASSERT_FALSE(out.Empty());
  EXPECT_EQ(*out.Pixel(), 100) << "merged before it could not be handed out";
}

TEST_F(WithoutMemory, PlainDetectionFailsTheFrame) {
  ClPlainFingerDetection plain(240);
  ClSimpleBitmap in = test::gray_image(10, 10, 100);
  const FailingSystem failing(eFailing::ArrayNew);
  EXPECT_THROW(plain.Detect(in, out), CXMemoryAllocException);
}

}  // namespace
}  // namespace Osv::lx
