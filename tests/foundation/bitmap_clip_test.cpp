#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <vector>

#include "foundation/bitmap.h"
#include "foundation/bitmap_reference.h"
#include "foundation/exceptions.h"

namespace Osv::utilities {
namespace {

using testing_support::pixels;
using Bytes = std::vector<unsigned char>;

/// 5 x 3 pixels: row r holds 10 r + 1 to 10 r + 5 and three bytes of padding, 10 r + 6 to 10 r + 8.
ClSimpleBitmap numbered() {
  ClSimpleBitmap bitmap;
  bitmap.Create(5, 3, 8, 0);
  for (unsigned long i = 0; i < bitmap.PixelSize(); ++i) {
    bitmap.Pixel()[i] = static_cast<unsigned char>(10 * (i / 8) + i % 8 + 1);
  }
  return bitmap;
}

TEST(Clip, OfAnEmptyBitmapGivesNull) {
  const ClSimpleBitmap empty;
  EXPECT_EQ(empty.clip(0, 0, 1, 1), nullptr);
}

TEST(Clip, GivesTheRectangleWithThePaddingThatFollowsInTheSource) {
  const auto clipped = numbered().clip(1, 1, 3, 2);
  EXPECT_EQ(clipped->Width(), 3U);
  EXPECT_EQ(clipped->Height(), 2U);
  EXPECT_EQ(pixels(*clipped), (Bytes{12, 13, 14, 15, 22, 23, 24, 25}));
}

TEST(Clip, RunsOverTheEndOfARowIntoTheNextButNotBehindTheLast) {
  const auto clipped = numbered().clip(4, 1, 5, 2);
  EXPECT_EQ(pixels(*clipped), (Bytes{15, 16, 17, 18, 21, 22, 23, 24, 25, 26, 27, 28, 0, 0, 0, 0}));
}

TEST(Clip, OfTheWholeGivesTheSamePixels) {
  const ClSimpleBitmap source = numbered();
  EXPECT_EQ(pixels(*source.clip(0, 0, 5, 3)), pixels(source));
}

TEST(Clip, WithoutWidthHasNoPixels) {
  const auto clipped = numbered().clip(0, 0, 0, 2);
  EXPECT_EQ(clipped->Width(), 0U);
  EXPECT_EQ(clipped->Height(), 2U);
  EXPECT_EQ(clipped->PixelSize(), 0U);
}

TEST(Clip, LeavesTheSourceAsItIs) {
  const ClSimpleBitmap source = numbered();
  (void)source.clip(1, 1, 2, 2);
  EXPECT_EQ(pixels(source), pixels(numbered()));
}

TEST(Clip, HasTheGrayRampAndNoResolutionWhateverTheSourceHas) {
  ClSimpleBitmap source = numbered();
  source.SetPels(1, 2);
  source.Palette()[7] = 0x123456;
  const auto clipped = source.clip(0, 0, 2, 2);
  EXPECT_EQ(clipped->XPels() + clipped->YPels(), 0U);
  EXPECT_EQ(clipped->Palette()[7], 0x070707U);
}

TEST(Clip, IsPlainEvenWhereTheSourceHasMasks) {
  ClSimpleBitmap source;
  source.Create(4, 4, 32, 3);
  source.SetBlack();
  const auto clipped = source.clip(0, 0, 2, 2);
  EXPECT_EQ(clipped->BI()->biCompression, 0U);
  EXPECT_EQ(clipped->BitCount(), 32U);
}

class ClipAtDepth : public testing::TestWithParam<unsigned long> {
 protected:
  static constexpr unsigned long kX = 16;

  ClipAtDepth() {
    std::mt19937 random(11);
    m_source.Create(64, 6, GetParam(), 0);
    testing_support::fill_randomly(m_source, random);
  }

  ClSimpleBitmap m_source;
};

INSTANTIATE_TEST_SUITE_P(Depths, ClipAtDepth, testing::Values(1, 2, 4, 8, 16, 24, 32));

TEST_P(ClipAtDepth, TakesWholeStridesFromTheByteOfWholeBytesPerPixelTimesX) {
  const auto clipped = m_source.clip(kX, 2, 13, 3);
  const unsigned long first = GetParam() / 8 * kX;
  for (unsigned long row = 0; row < 3; ++row) {
    EXPECT_EQ(
        std::memcmp(clipped->Pixel() + row * clipped->BPRow(),
                    m_source.Pixel() + (2 + row) * m_source.BPRow() + first, clipped->BPRow()),
        0)
        << row;
  }
}

TEST(Clip, Below8BitsIgnoresX) {
  ClSimpleBitmap source;
  source.Create(64, 1, 4, 0);
  source.SetWhite();
  source.Pixel()[0] = 0x12;
  EXPECT_EQ(source.clip(32, 0, 2, 1)->Pixel()[0], 0x12);
}

TEST(Clip, ReadsNothingBehindTheSourceEvenForARectangleFarOutside) {
  constexpr unsigned long kLargest = std::numeric_limits<unsigned long>::max();
  const ClSimpleBitmap source = numbered();
  EXPECT_EQ(pixels(*source.clip(0, 3, 4, 1)), (Bytes{0, 0, 0, 0}));
  EXPECT_EQ(source.clip(kLargest, kLargest, 4, 2)->PixelSize(), 8U);
  EXPECT_EQ(source.clip(kLargest / 2, kLargest / 3, 400, 200)->PixelSize(), 80000U);
}

TEST(Clip, OfASizeThatNoBlockHasIsRefused) {
  EXPECT_THROW((void)numbered().clip(0, 0, 1UL << 31, 1), CXMemoryAllocException);
}

}  // namespace
}  // namespace Osv::utilities
