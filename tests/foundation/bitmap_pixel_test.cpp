#include <gtest/gtest.h>

#include <random>

#include "foundation/bitmap.h"
#include "foundation/bitmap_reference.h"

namespace Osv::utilities {
namespace {

using testing_support::pixels;
using testing_support::reference_get;
using testing_support::reference_masked_number;
using testing_support::reference_number;
using testing_support::reference_word;

struct Shape {
  unsigned long bits;
  unsigned long compression;
};

void PrintTo(const Shape& shape, std::ostream* out) {
  *out << shape.bits << " bits, compression " << shape.compression;
}

/// Random images of odd sizes at one depth.
class PixelsAtDepth : public testing::TestWithParam<Shape> {
 protected:
  /// Calls `check(bitmap, x, y)` for each pixel of a number of random images.
  template <typename Check>
  void for_each_pixel(Check check) {
    for (const unsigned long width : {1UL, 3UL, 7UL, 13UL, 33UL}) {
      ClSimpleBitmap bitmap;
      bitmap.Create(width, 3, GetParam().bits, GetParam().compression);
      testing_support::fill_randomly(bitmap, m_random);
      for (unsigned long i = 0; i < width * 3; ++i) {
        check(bitmap, i % width, i / width);
      }
    }
  }

  std::mt19937 m_random{20};
};

INSTANTIATE_TEST_SUITE_P(Depths, PixelsAtDepth,
                         testing::Values(Shape{1, 0}, Shape{2, 0}, Shape{4, 0}, Shape{8, 0},
                                         Shape{16, 0}, Shape{16, 3}, Shape{24, 0}, Shape{24, 3},
                                         Shape{32, 0}, Shape{32, 3}));

TEST_P(PixelsAtDepth, AreReadAsTheReferenceReadsThem) {
  for_each_pixel([](const ClSimpleBitmap& bitmap, unsigned long x, unsigned long y) {
    ASSERT_EQ(bitmap.GetPixel(x, y), reference_get(bitmap, x, y)) << x << ',' << y;
  });
}

TEST_P(PixelsAtDepth, AreReadAsBlackWhenAllTheirBytesAreZero) {
  for_each_pixel([](ClSimpleBitmap& bitmap, unsigned long x, unsigned long y) {
    bitmap.SetBlack();
    ASSERT_EQ(bitmap.GetPixel(x, y), reference_get(bitmap, x, y)) << x << ',' << y;
  });
}

/// The number that a pixel has to hold once `colour` was set.
std::uint64_t expected_number(const ClSimpleBitmap& bitmap, unsigned int colour,
                              std::uint64_t before) {
  if (bitmap.BitCount() == 24) {
    return colour & 0xFFFFFF;
  }
  if (bitmap.BitCount() > 8) {
    return reference_masked_number(bitmap, colour);
  }
  for (unsigned long entry = 0; entry < 1UL << bitmap.BitCount(); ++entry) {
    if (reference_word(bitmap, entry) == colour) {
      return entry;
    }
  }
  return before;
}

TEST_P(PixelsAtDepth, AreWrittenAsTheReferenceWritesThem) {
  for_each_pixel([this](ClSimpleBitmap& bitmap, unsigned long x, unsigned long y) {
    const unsigned int gray = static_cast<unsigned int>(m_random() % 256) * 0x010101U;
    const unsigned int any = static_cast<unsigned int>(m_random());
    for (const unsigned int colour : {gray, any, 0U, 0xFFFFFFU}) {
      const std::uint64_t expected =
          expected_number(bitmap, colour, reference_number(bitmap, x, y));
      bitmap.SetPixel(x, y, colour);
      ASSERT_EQ(reference_number(bitmap, x, y), expected) << x << ',' << y << ' ' << colour;
    }
  });
}

TEST_P(PixelsAtDepth, AreWrittenWithoutTouchingTheOthers) {
  for_each_pixel([](ClSimpleBitmap& bitmap, unsigned long x, unsigned long y) {
    const ClSimpleBitmap before(bitmap);
    bitmap.SetPixel(x, y, 0);
    for (unsigned long i = 0; i < bitmap.Width() * bitmap.Height(); ++i) {
      const unsigned long other_x = i % bitmap.Width();
      const unsigned long other_y = i / bitmap.Width();
      if (other_x != x || other_y != y) {
        ASSERT_EQ(reference_number(bitmap, other_x, other_y),
                  reference_number(before, other_x, other_y));
      }
    }
  });
}

/// Depths that no block of this family has.
class PixelsAtOtherDepth : public testing::TestWithParam<unsigned long> {
 protected:
  PixelsAtOtherDepth() {
    m_bitmap.Create(3, 2, GetParam(), 0);
    m_bitmap.SetWhite();
  }

  ClSimpleBitmap m_bitmap;
};

INSTANTIATE_TEST_SUITE_P(Depths, PixelsAtOtherDepth,
                         testing::Values(0, 3, 5, 6, 7, 9, 12, 15, 20, 31, 48, 64, 65535));

TEST_P(PixelsAtOtherDepth, HaveNoColour) { EXPECT_EQ(m_bitmap.GetPixel(1, 1), 4294967295U); }

TEST_P(PixelsAtOtherDepth, StayAsTheyAre) {
  const std::vector<unsigned char> before = pixels(m_bitmap);
  m_bitmap.SetPixel(1, 1, 0);
  EXPECT_EQ(pixels(m_bitmap), before);
}

TEST(Pixel, Of8BitsTakesTheByteOfItsGray) {
  ClSimpleBitmap bitmap;
  bitmap.Create(3, 1, 8, 0);
  bitmap.SetBlack();
  bitmap.SetPixel(1, 0, 0x808080);
  EXPECT_EQ(pixels(bitmap), (std::vector<unsigned char>{0, 128, 0, 0}));
}

TEST(Pixel, OfAPaletteDepthIgnoresAColourThatStandsInNoEntry) {
  ClSimpleBitmap bitmap;
  bitmap.Create(3, 1, 8, 0);
  bitmap.SetWhite();
  bitmap.SetPixel(1, 0, 0x808081);
  EXPECT_EQ(pixels(bitmap), (std::vector<unsigned char>(4, 255)));
}

TEST(Pixel, TakesTheFirstOfTwoEqualEntries) {
  ClSimpleBitmap bitmap;
  bitmap.Create(1, 1, 8, 0);
  bitmap.Palette()[3] = 77;
  bitmap.Palette()[9] = 77;
  bitmap.SetPixel(0, 0, 77);
  EXPECT_EQ(bitmap.Pixel()[0], 3);
}

TEST(Pixel, DoesNotMatchBeyondAShortenedPalette) {
  ClSimpleBitmap bitmap;
  bitmap.Create(1, 1, 8, 0);
  bitmap.BI()->biClrUsed = 16;
  bitmap.SetBlack();
  bitmap.SetPixel(0, 0, 0x202020);
  EXPECT_EQ(bitmap.Pixel()[0], 0);
}

TEST(Pixel, HasNoColourBeyondAShortenedPalette) {
  ClSimpleBitmap bitmap;
  bitmap.Create(2, 1, 8, 0);
  bitmap.BI()->biClrUsed = 16;
  bitmap.Pixel()[0] = 15;
  bitmap.Pixel()[1] = 16;
  EXPECT_EQ(bitmap.GetPixel(0, 0), 0x0F0F0FU);
  EXPECT_EQ(bitmap.GetPixel(1, 0), 4294967295U);
}

TEST(Pixel, Of1BitHasTheHighestBitOnTheLeft) {
  ClSimpleBitmap bitmap;
  bitmap.Create(9, 1, 1, 0);
  bitmap.SetBlack();
  bitmap.SetPixel(0, 0, 0xFFFFFF);
  bitmap.SetPixel(8, 0, 0xFFFFFF);
  EXPECT_EQ(pixels(bitmap), (std::vector<unsigned char>{128, 128, 0, 0}));
}

TEST(Pixel, Of24BitsStandsLowByteFirst) {
  ClSimpleBitmap bitmap;
  bitmap.Create(1, 1, 24, 0);
  bitmap.SetBlack();
  bitmap.SetPixel(0, 0, 0xFF010203);
  EXPECT_EQ(pixels(bitmap), (std::vector<unsigned char>{3, 2, 1, 0}));
  EXPECT_EQ(bitmap.GetPixel(0, 0), 0x010203U);
}

// The masks of the default are red, green, blue from the first on, and the value behind them is 1
// for any pixel that is not black: only the mask at position 0, the third, sees it.
TEST(Pixel, Of16And32BitsReadsAsOneInItsLowestMaskUnlessBlack) {
  for (const unsigned long bits : {16UL, 32UL}) {
    ClSimpleBitmap bitmap;
    bitmap.Create(2, 1, bits, 0);
    bitmap.SetBlack();
    bitmap.Pixel()[bits / 8 - 1] = 0x40;
    EXPECT_EQ(bitmap.GetPixel(0, 0), 0x10000U) << bits;
    EXPECT_EQ(bitmap.GetPixel(1, 0), 0U) << bits;
  }
}

// The wide masks leave a zero in the second word, so the common length is 0.
TEST(Pixel, UnderTheWideMasksIsAlwaysBlack) {
  for (const unsigned long bits : {16UL, 32UL}) {
    ClSimpleBitmap bitmap;
    bitmap.Create(2, 2, bits, 3);
    bitmap.SetWhite();
    EXPECT_EQ(bitmap.GetPixel(1, 1), 0U) << bits;
    bitmap.SetPixel(1, 1, 0xFFFFFF);
    EXPECT_EQ(reference_number(bitmap, 1, 1), 0U) << bits;
  }
}

TEST(Pixel, KeepsTheHighBitsOfALongerMask) {
  ClSimpleBitmap bitmap;
  bitmap.Create(1, 1, 16, 3);
  bitmap.Palette()[0] = 0xF800;
  bitmap.Palette()[1] = 0x07E0;
  bitmap.Palette()[2] = 0x001F;
  bitmap.SetPixel(0, 0, 0x001F00);
  EXPECT_EQ(reference_number(bitmap, 0, 0), 0x07C0U);
}

struct MaskRow {
  long mask;
  long position;
  long length;
};

class MaskData : public testing::TestWithParam<MaskRow> {};

INSTANTIATE_TEST_SUITE_P(Masks, MaskData,
                         testing::Values(MaskRow{0, 32, 0}, MaskRow{1, 0, 1}, MaskRow{31, 0, 5},
                                         MaskRow{992, 5, 5}, MaskRow{31744, 10, 5},
                                         MaskRow{16711680, 16, 8}, MaskRow{0xFFFFFFFF, 0, 32},
                                         MaskRow{-1, 0, 32}, MaskRow{0x80000000, 31, 1},
                                         MaskRow{0x100000000, 32, 0}, MaskRow{0x1C0000000, 30, 2},
                                         MaskRow{0b1101100, 2, 2}));

TEST_P(MaskData, GivesTheFirstRunWithinTheLow32Bits) {
  long position = -1;
  long length = -1;
  ClSimpleBitmap().MaskData(GetParam().mask, position, length);
  EXPECT_EQ(position, GetParam().position);
  EXPECT_EQ(length, GetParam().length);
}

}  // namespace
}  // namespace Osv::utilities
