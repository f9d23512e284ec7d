#include "detection/live_detection.h"

#include <gtest/gtest.h>

#include "detection/images.h"

namespace Osv::lx {
namespace {

using utilities::ClSimpleBitmap;

TEST(LiveDetection, EveryFrameIsFinishedEvenABlackOne) {
  ClLiveDetection live;
  ClSimpleBitmap black = test::gray_image(8, 4, 0);
  ClSimpleBitmap bright = test::gray_image(8, 4, 255);
  ClSimpleBitmap out;
  EXPECT_TRUE(live.Detect(black, out));
  EXPECT_TRUE(live.Detect(bright, out));
}

TEST(LiveDetection, TheResultIsAnIndependentCopy) {
  ClLiveDetection live;
  ClSimpleBitmap in = test::noise_image(8, 4, 1);
  const ClSimpleBitmap before = in;
  ClSimpleBitmap out;
  live.Detect(in, out);
  in.SetWhite();
  EXPECT_TRUE(test::same_block(out, before));
}

}  // namespace
}  // namespace Osv::lx
