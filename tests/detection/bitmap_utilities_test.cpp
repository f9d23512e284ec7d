#include "detection/bitmap_utilities.h"

#include <gtest/gtest.h>

#include "detection/images.h"

namespace Osv::lx {
namespace {

using utilities::ClSimpleBitmap;

unsigned long plain_sum(ClSimpleBitmap& image) {
  unsigned long sum = 0;
  for (unsigned long y = 0; y < image.Height(); ++y) {
    for (const unsigned char pixel : test::row_of(image, y)) {
      sum += pixel;
    }
  }
  return sum;
}

TEST(BitmapUtilities, TheSumEqualsThePlainOneAtOddSizesAndLeavesThePaddingOut) {
  for (unsigned long width = 1; width < 70; ++width) {
    ClSimpleBitmap image = test::noise_image(width, 1 + width % 7, static_cast<unsigned>(width));
    EXPECT_EQ(ClBitmapUtilities::Gray_Sum(image), plain_sum(image)) << width;
  }
}

TEST(BitmapUtilities, TheSumDoesNotOverflow32Bits) {
  const ClSimpleBitmap image = test::gray_image(4200, 4200, 255);
  EXPECT_EQ(ClBitmapUtilities::Gray_Sum(image), 255UL * 4200 * 4200);
}

TEST(BitmapUtilities, TheSumOfNoRowsIs0) {
  ClSimpleBitmap flat;
  flat.Create(10, 0, 8, 0);
  EXPECT_EQ(ClBitmapUtilities::Gray_Sum(flat), 0U);
  EXPECT_EQ(ClBitmapUtilities::Gray_Sum(ClSimpleBitmap()), 0U);
}

TEST(BitmapUtilities, TheMeanIsCutTowardsZero) {
  ClSimpleBitmap image = test::gray_image(3, 1, 10);
  test::row_of(image, 0)[0] = 12;
  EXPECT_EQ(ClBitmapUtilities::Gray_Avarage(image), 10U);
}

TEST(BitmapUtilities, TheMeanOfAPartLooksAtItsColumnsAlone) {
  ClSimpleBitmap image = test::gray_image(5, 3, 10);
  for (unsigned long y = 0; y < 3; ++y) {
    test::row_of(image, y)[1] = 20;
    test::row_of(image, y)[2] = 40;
  }
  EXPECT_EQ(ClBitmapUtilities::Gray_Avarage(image, 1, 3), 30U);
  EXPECT_EQ(ClBitmapUtilities::Gray_Avarage(image, 3, 5), 10U);
}

TEST(BitmapUtilities, TheMeanOfNoPixelsIsBrighterThanAnyImage) {
  ClSimpleBitmap flat;
  flat.Create(10, 0, 8, 0);
  const ClSimpleBitmap image = test::gray_image(5, 3, 10);
  EXPECT_GT(ClBitmapUtilities::Gray_Avarage(flat), 255U);
  EXPECT_GT(ClBitmapUtilities::Gray_Avarage(ClSimpleBitmap()), 255U);
  EXPECT_GT(ClBitmapUtilities::Gray_Avarage(image, 2, 2), 255U);
}

}  // namespace
}  // namespace Osv::lx
