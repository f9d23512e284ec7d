#include "detection/preview_detection.h"

#include <gtest/gtest.h>

#include "detection/images.h"

namespace Osv::lx {
namespace {

TEST(PreviewDetection, NoFrameIsFinishedAndNothingIsTouched) {
  ClPreviewDetection preview;
  utilities::ClSimpleBitmap in = test::noise_image(8, 4, 1);
  const utilities::ClSimpleBitmap before = in;
  utilities::ClSimpleBitmap out;
  EXPECT_FALSE(preview.Detect(in, out));
  EXPECT_TRUE(out.Empty());
  EXPECT_TRUE(test::same_block(in, before));
}

}  // namespace
}  // namespace Osv::lx
