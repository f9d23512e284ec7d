#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "foundation/bitmap.h"
#include "foundation/bitmap_reference.h"
#include "foundation/bitmap_rescale.h"
#include "foundation/exceptions.h"
#include "foundation/pixel_kernels.h"
#include "foundation/rescale_reference.h"

namespace Osv::utilities {
namespace {

using testing_support::pixels;
using testing_support::reference_bilinear;
using testing_support::reference_double;
using Bytes = std::vector<unsigned char>;

constexpr auto kBilinear = ClSimpleBitmap::eRescaleBilinear;
constexpr auto kDouble = ClSimpleBitmap::eRescaleDouble;
static_assert(kBilinear == 0 && kDouble == 1);

ClSimpleBitmap created(unsigned long width, unsigned long height, unsigned long bits,
                       unsigned long compression = 0) {
  ClSimpleBitmap bitmap;
  bitmap.Create(width, height, bits, compression);
  bitmap.SetBlack();
  return bitmap;
}

ClSimpleBitmap random_bitmap(unsigned long width, unsigned long height, unsigned long bits,
                             std::mt19937& random) {
  ClSimpleBitmap bitmap = created(width, height, bits);
  testing_support::fill_randomly(bitmap, random);
  return bitmap;
}

/// An 8-bit picture of one row's grays, repeated.
ClSimpleBitmap rows_of(const Bytes& grays, unsigned long height) {
  ClSimpleBitmap bitmap = created(grays.size(), height, 8);
  for (unsigned long y = 0; y < height; ++y) {
    std::copy(grays.begin(), grays.end(), bitmap.Pixel() + y * bitmap.BPRow());
  }
  return bitmap;
}

ClSimpleBitmap rescaled(ClSimpleBitmap bitmap, unsigned long width, unsigned long height,
                        ClSimpleBitmap::eRescaleMode mode) {
  bitmap.Rescale(width, height, mode);
  return bitmap;
}

/// Has the allocator fill what it hands out meanwhile.
class DirtyMemory {
 public:
  DirtyMemory() { mallopt(M_PERTURB, 0x55); }
  ~DirtyMemory() { mallopt(M_PERTURB, 0); }
  DirtyMemory(const DirtyMemory&) = delete;
  DirtyMemory& operator=(const DirtyMemory&) = delete;
};

Bytes block(const ClSimpleBitmap& bitmap) {
  const auto* const bytes = reinterpret_cast<const unsigned char*>(bitmap.BI());
  return {bytes, bytes + bitmap.FullSize()};
}

void expect_bilinear(const ClSimpleBitmap& source, unsigned long width, unsigned long height) {
  ASSERT_EQ(block(rescaled(source, width, height, kBilinear)),
            block(reference_bilinear(source, width, height)))
      << source.Width() << " x " << source.Height() << " to " << width << " x " << height << " at "
      << source.BitCount() << " bits";
}

/// Expects a refusal with number and text, and the bitmap as it was.
void expect_refused(unsigned long width, unsigned long height, int mode, int number,
                    const std::string& text) {
  ClSimpleBitmap bitmap = rows_of({1, 2, 3}, 2);
  const Bytes before = block(bitmap);
  try {
    bitmap.Rescale(width, height, static_cast<ClSimpleBitmap::eRescaleMode>(mode));
    FAIL();
  } catch (const ClContextException<CXOtherException>& failure) {
    EXPECT_EQ(failure.GetErrorNumber(), number);
    EXPECT_EQ(failure.What(), text);
    EXPECT_EQ(failure.what(), " Message[" + text + "]");
  }
  EXPECT_EQ(block(bitmap), before);
}

TEST(Rescale, ToAWidthOfZeroIsRefused) {
  expect_refused(0, 10, kBilinear, -14, "Width must be greater 0");
  expect_refused(0, 10, kDouble, -14, "Width must be greater 0");
}

TEST(Rescale, ToAHeightOfZeroIsRefused) {
  expect_refused(10, 0, kBilinear, -14, "Height must be greater 0");
  expect_refused(10, 0, kDouble, -14, "Height must be greater 0");
}

TEST(Rescale, NamesTheWidthWhenBothSidesAreZeroAndASizeBeforeTheMode) {
  expect_refused(0, 0, kBilinear, -14, "Width must be greater 0");
  expect_refused(10, 0, 2, -14, "Height must be greater 0");
}

TEST(Rescale, InAnUnknownModeIsRefused) {
  expect_refused(10, 10, 2, -33, "Scaling mode not supported");
  expect_refused(10, 10, -1, -33, "Scaling mode not supported");
}

TEST(Rescale, ToASizeThatNoBlockHasIsRefusedAndTheBitmapStaysAsItWas) {
  ClSimpleBitmap bitmap = rows_of({1, 2, 3}, 2);
  const Bytes before = block(bitmap);
  EXPECT_THROW(bitmap.Rescale(1UL << 31, 2, kBilinear), CXMemoryAllocException);
  EXPECT_THROW(bitmap.Rescale(1UL << 31 | 1, ~0UL, kBilinear), CXMemoryAllocException);
  EXPECT_EQ(block(bitmap), before);
}

TEST(Rescale, OfAnEmptyBitmapLeavesItEmpty) {
  for (const auto mode : {kBilinear, kDouble}) {
    ClSimpleBitmap empty;
    empty.Rescale(4, 4, mode);
    EXPECT_TRUE(empty.Empty());
  }
}

TEST(DoubleRescale, OfABitmapWithoutColumnsDoublesItsRows) {
  ClSimpleBitmap flat = created(0, 3, 8);
  flat.SetResolution(500, 500);
  flat.Rescale(4, 4, kDouble);
  EXPECT_EQ(block(flat), block(created(0, 6, 8)));
}

TEST(BilinearRescale, OfABitmapWithoutPixelsIsBlack) {
  for (const auto& [width, height] : {std::pair{0UL, 3UL}, {3UL, 0UL}, {0UL, 0UL}}) {
    ClSimpleBitmap flat = created(width, height, 8);
    flat.Rescale(4, 4, kBilinear);
    ClSimpleBitmap black = created(4, 4, 8);
    black.SetBlack();
    EXPECT_EQ(block(flat), block(black));
  }
}

TEST(Rescale, CarriesNoResolutionOver) {
  ClSimpleBitmap source = rows_of({1, 2, 3}, 2);
  source.SetResolution(500, 500);
  for (const auto mode : {kBilinear, kDouble}) {
    const ClSimpleBitmap target = rescaled(source, 4, 4, mode);
    EXPECT_EQ(target.XPels() + target.YPels(), 0U);
  }
}

TEST(Rescale, GivesTheGrayRampInPlaceOfTheOldPalette) {
  ClSimpleBitmap source = rows_of({1, 2, 3}, 2);
  source.Palette()[9] = 0x123456;
  for (const auto mode : {kBilinear, kDouble}) {
    EXPECT_EQ(rescaled(source, 4, 4, mode).Palette()[9], 0x090909U);
  }
}

class RescaleAtDepth : public testing::TestWithParam<unsigned long> {
 protected:
  unsigned long side(unsigned long smallest) { return smallest + m_random() % 40; }

  ClSimpleBitmap source() { return random_bitmap(side(1), side(1), GetParam(), m_random); }

  std::mt19937 m_random{static_cast<unsigned int>(GetParam())};
};

INSTANTIATE_TEST_SUITE_P(Depths, RescaleAtDepth, testing::Values(1, 2, 4, 8, 16, 24, 32));

TEST_P(RescaleAtDepth, BlendsAsTheReferenceDoes) {
  for (int i = 0; i < 12; ++i) {
    expect_bilinear(source(), side(2), side(2));
  }
}

TEST_P(RescaleAtDepth, BlendsColumnsThatRoundingCarriesBehindTheLastAsTheReferenceDoes) {
  expect_bilinear(random_bitmap(4, 4, GetParam(), m_random), 188, 3);
  expect_bilinear(random_bitmap(4, 4, GetParam(), m_random), 3, 188);
}

TEST_P(RescaleAtDepth, BlendsASingleColumnOrRowAsTheReferenceDoes) {
  expect_bilinear(random_bitmap(1, 9, GetParam(), m_random), 6, 5);
  expect_bilinear(random_bitmap(9, 1, GetParam(), m_random), 5, 6);
  expect_bilinear(random_bitmap(1, 1, GetParam(), m_random), 3, 3);
}

TEST_P(RescaleAtDepth, BlendsMoreColumnsThanAreBlendedTogetherAsTheReferenceDoes) {
  expect_bilinear(random_bitmap(1031, 3, GetParam(), m_random), 1299, 4);
  expect_bilinear(random_bitmap(1299, 4, GetParam(), m_random), 1031, 3);
  expect_bilinear(random_bitmap(3001, 2, GetParam(), m_random), 653, 2);
}

TEST_P(RescaleAtDepth, IsBlackWhereTheTargetHasASideOf1) {
  for (const auto& [width, height] : {std::pair{1UL, 7UL}, {7UL, 1UL}, {1UL, 1UL}}) {
    EXPECT_EQ(block(rescaled(source(), width, height, kBilinear)),
              block(created(width, height, GetParam())));
  }
}

TEST_P(RescaleAtDepth, RepeatsEachByteOfEachPixelInBothDirections) {
  for (int i = 0; i < 12; ++i) {
    const ClSimpleBitmap bitmap = source();
    ASSERT_EQ(block(rescaled(bitmap, 1, 1, kDouble)), block(reference_double(bitmap)))
        << bitmap.Width() << " x " << bitmap.Height();
  }
}

TEST(RescaleAtOtherDepths, GivesABlackPicture) {
  const ClSimpleBitmap target = rescaled(created(5, 4, 12), 7, 6, kBilinear);
  EXPECT_EQ(block(target), block(created(7, 6, 12)));
}

TEST(BilinearRescale, OfMaskedPixelsReadsThroughTheMasksAndWritesPlainOnes) {
  std::mt19937 random(3);
  for (const unsigned long bits : {16UL, 32UL}) {
    ClSimpleBitmap source = created(7, 5, bits, 3);
    source.Palette()[0] = 7;
    source.Palette()[1] = 0x38;
    source.Palette()[2] = 0x1C0;
    testing_support::fill_randomly(source, random);
    expect_bilinear(source, 9, 8);
  }
}

TEST(BilinearRescale, EqualsTheReferenceForEveryPairOfSmallWidths) {
  std::mt19937 random(5);
  for (unsigned long width = 1; width <= 24; ++width) {
    const ClSimpleBitmap source = random_bitmap(width, 2, 8, random);
    for (unsigned long target = 2; target <= 70; ++target) {
      expect_bilinear(source, target, 3);
    }
  }
}

TEST(BilinearRescale, EqualsTheReferenceForEveryPairOfSmallHeights) {
  std::mt19937 random(6);
  for (unsigned long height = 1; height <= 24; ++height) {
    const ClSimpleBitmap source = random_bitmap(2, height, 8, random);
    for (unsigned long target = 2; target <= 70; ++target) {
      expect_bilinear(source, 3, target);
    }
  }
}

TEST(BilinearRescale, EqualsTheReferenceOnAFrame) {
  std::mt19937 random(8);
  const ClSimpleBitmap source = random_bitmap(163, 241, 8, random);
  expect_bilinear(source, 201, 301);
  expect_bilinear(source, 97, 83);
  expect_bilinear(source, 301, 63);
}

TEST(BilinearRescale, BlendsNoMoreColumnsThanItNeeds) {
  static std::size_t groups = 0;
  img::PixelKernels kernels = img::pixel_kernels();
  kernels.blend_across = [](const unsigned char* row, const img::ColumnBlends& blends,
                            img::BlendedColumns* out) {
    groups = blends.size;
    img::pixel_kernels().blend_across(row, blends, out);
  };
  for (unsigned long width = 2; width < 40; ++width) {
    (void)interpolated(created(5, 5, 8), width, 2, kernels);
    EXPECT_EQ(groups, width / img::kBlendedTogether + (width % img::kBlendedTogether != 0))
        << width;
  }
}

TEST(BilinearRescale, BlendsBetweenTheFourCorners) {
  ClSimpleBitmap source = created(2, 2, 8);
  source.Pixel()[0] = 0;
  source.Pixel()[1] = 100;
  source.Pixel()[4] = 50;
  source.Pixel()[5] = 251;
  EXPECT_EQ(pixels(rescaled(source, 3, 3, kBilinear)),
            (Bytes{0, 50, 100, 0, 25, 100, 175, 0, 50, 150, 251, 0}));
}

TEST(BilinearRescale, ToTheSameSizeBlackensTheLastColumnAndTheLastRow) {
  const ClSimpleBitmap target = rescaled(rows_of({10, 20, 30, 40}, 3), 4, 3, kBilinear);
  EXPECT_EQ(pixels(target), (Bytes{10, 20, 30, 0, 10, 20, 30, 0, 0, 0, 0, 0}));
}

TEST(BilinearRescale, ToASmallerPictureBlackensTheColumnWhoseSourceIsTheTargetsLast) {
  const ClSimpleBitmap source = rows_of({10, 20, 30, 40, 50, 60, 70, 80, 90, 100}, 2);
  EXPECT_EQ(pixels(rescaled(source, 4, 3, kBilinear)),
            (Bytes{10, 0, 70, 100, 10, 0, 70, 100, 10, 0, 70, 100}));
}

TEST(BilinearRescale, ToASmallerPictureBlackensTheRowWhoseSourceIsTheTargetsLast) {
  ClSimpleBitmap source = created(1, 10, 8);
  for (unsigned long y = 0; y < 10; ++y) {
    source.SetPixel(0, y, static_cast<unsigned int>(10 * (y + 1)) * 65793);
  }
  const ClSimpleBitmap target = rescaled(source, 2, 4, kBilinear);
  EXPECT_EQ(pixels(target), (Bytes{10, 10, 0, 0, 0, 0, 0, 0, 70, 70, 0, 0, 100, 100, 0, 0}));
}

TEST(BilinearRescale, BlackensThePaddingOfEveryRow) {
  const DirtyMemory dirty;
  const ClSimpleBitmap picture = rescaled(created(5, 5, 8), 9, 9, kBilinear);
  for (unsigned long y = 0; y < 9; ++y) {
    const unsigned char* const end = picture.Pixel() + (y + 1) * picture.BPRow();
    EXPECT_EQ(Bytes(end - 3, end), Bytes(3)) << y;
  }
}

TEST(BilinearRescale, OfASinglePixelGivesItsGrayEverywhere) {
  const ClSimpleBitmap target = rescaled(rows_of({77}, 1), 4, 2, kBilinear);
  EXPECT_EQ(pixels(target), Bytes(8, 77));
}

TEST(BilinearRescale, Of188From4ColumnsEndsWithTheLastColumn) {
  const ClSimpleBitmap target = rescaled(rows_of({1, 2, 3, 200}, 2), 188, 3, kBilinear);
  ASSERT_GT(187 * (3.0 / 187.0), 3.0);
  EXPECT_EQ(target.GetPixel(187, 0), 200U * 65793);
}

TEST(BilinearRescale, TakesTheLowByteOfThePalettesColours) {
  std::mt19937 random(9);
  ClSimpleBitmap source = random_bitmap(13, 7, 8, random);
  for (unsigned int i = 0; i < 256; ++i) {
    source.Palette()[i] = 0x654300 | (255 - i);
  }
  expect_bilinear(source, 17, 9);
  EXPECT_EQ(rescaled(source, 17, 9, kBilinear).Pixel()[0], 255 - source.Pixel()[0]);
}

TEST(BilinearRescale, ReadsAnIndexBeyondAShortenedPaletteAsWhite) {
  ClSimpleBitmap source = rows_of({0, 1, 2, 255}, 2);
  source.BI()->biClrUsed = 2;
  std::memmove(source.Pixel(), source.Pixel() + 1016, 8);
  EXPECT_EQ(rescaled(source, 7, 3, kBilinear).Pixel()[4], 255);
  expect_bilinear(source, 7, 3);
}

TEST(DoubleRescale, RepeatsEachPixelWhateverTheSizeIs) {
  ClSimpleBitmap source = rows_of({1, 2, 3}, 2);
  source.Pixel()[4] = 9;
  for (const unsigned long size : {1UL, 6UL, 1UL << 40}) {
    const ClSimpleBitmap target = rescaled(source, size, size, kDouble);
    EXPECT_EQ(target.Width(), 6U);
    EXPECT_EQ(target.Height(), 4U);
    EXPECT_EQ(pixels(target), (Bytes{1, 1, 2, 2, 3, 3, 0, 0, 1, 1, 2, 2, 3, 3, 0, 0,
                                     9, 9, 2, 2, 3, 3, 0, 0, 9, 9, 2, 2, 3, 3, 0, 0}));
  }
}

TEST(DoubleRescale, GoesThroughNoRowsWithoutPixels) {
  static unsigned int s_rows = 0;
  img::PixelKernels kernels = img::pixel_kernels();
  kernels.double_row = [](const unsigned char*, std::size_t, unsigned char*, unsigned char*) {
    ++s_rows;
  };
  const ClSimpleBitmap target = doubled(created(0, 3, 8), kernels);
  EXPECT_EQ(s_rows, 0U);
  EXPECT_EQ(target.Width(), 0U);
  EXPECT_EQ(target.Height(), 6U);
}

TEST(DoubleRescale, CopiesIndexesWithoutLookingAtThePalette) {
  ClSimpleBitmap source = rows_of({1, 2}, 1);
  source.Palette()[1] = 0xFFFFFF;
  EXPECT_EQ(pixels(rescaled(source, 1, 1, kDouble)), (Bytes{1, 1, 2, 2, 1, 1, 2, 2}));
}

}  // namespace
}  // namespace Osv::utilities
