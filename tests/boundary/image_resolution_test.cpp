#include "ostrevanhvk3/image_resolution.h"

#include <gtest/gtest.h>

namespace Osv::lx {
namespace {

TEST(ImageResolution, ANewOneIsZero) {
  const ClImageResolution resolution;
  EXPECT_EQ(resolution.get_x(), 0U);
  EXPECT_EQ(resolution.get_y(), 0U);
}

TEST(ImageResolution, PixelsPerMetreAreStoredAsGiven) {
  const ClImageResolution resolution(500, 501);
  EXPECT_EQ(resolution.get_x(), 500U);
  EXPECT_EQ(resolution.get_y(), 501U);
}

TEST(ImageResolution, FiveHundredDotsPerInchAre19685PixelsPerMetre) {
  ClImageResolution resolution;
  resolution.put_DPI(500, 500);
  EXPECT_EQ(resolution, ClImageResolution(19685, 19685));
}

TEST(ImageResolution, DotsPerInchAreCutToWholePixelsPerMetre) {
  ClImageResolution resolution;
  resolution.put_DPI(1, 2);  // 39.37 and 78.74
  EXPECT_EQ(resolution, ClImageResolution(39, 78));
}

TEST(ImageResolution, DotsPerInchTooManyForTheResultGiveTheLargestThereIs) {
  ClImageResolution resolution;
  resolution.put_DPI(0xFFFFFFFF, 1);
  EXPECT_EQ(resolution, ClImageResolution(4294967295, 39));
}

TEST(ImageResolution, EitherValueMakesADifference) {
  EXPECT_NE(ClImageResolution(1, 2), ClImageResolution(1, 3));
  EXPECT_NE(ClImageResolution(1, 2), ClImageResolution(3, 2));
}

TEST(ImageResolution, CopyAndAssignmentTakeBothValues) {
  const ClImageResolution original(7, 9);
  const ClImageResolution copy(original);
  ClImageResolution assigned;
  assigned = copy;
  assigned = *&assigned;
  EXPECT_EQ(assigned, original);
}

}  // namespace
}  // namespace Osv::lx
