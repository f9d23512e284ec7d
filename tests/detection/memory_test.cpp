#include <gtest/gtest.h>

#include "detection/fast_plain_finger_detection.h"
#include "detection/images.h"
#include "detection/plain_finger_detection.h"
#include "foundation/exceptions.h"
#include "foundation/system_failures.h"

namespace Osv::lx {
namespace {

using testing_support::eFailing;
using testing_support::FailingSystem;
using utilities::ClSimpleBitmap;

/// Fast plain detection whose memory runs out.
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

TEST_F(WithoutMemory, PlainDetectionFailsTheFrame) {
  ClPlainFingerDetection plain(240);
  ClSimpleBitmap in = test::gray_image(10, 10, 100);
  const FailingSystem failing(eFailing::ArrayNew);
  EXPECT_THROW(plain.Detect(in, out), CXMemoryAllocException);
}

}  // namespace
}  // namespace Osv::lx
