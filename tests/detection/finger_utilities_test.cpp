#include "detection/finger_utilities.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "detection/images.h"
#include "detection/literal_contrast.h"

namespace Osv::lx {
namespace {

using utilities::ClSimpleBitmap;
using Fingers = ClFingerUtilities;

constexpr unsigned long kPels500Dpi = 19685;  // blocks of 10 pixels

/// Paints the columns `from` to `to` of every row.
void paint(ClSimpleBitmap& image, unsigned long from, unsigned long to, unsigned char level) {
  for (unsigned long y = 0; y < image.Height(); ++y) {
    for (unsigned long x = from; x < to; ++x) {
      test::row_of(image, y)[x] = level;
    }
  }
}

TEST(FingerByMean, MoreThan19LevelsDarkerIsAFinger) {
  const ClSimpleBitmap image = test::gray_image(100, 4, 180);
  EXPECT_FALSE(Fingers::IsFinger(image, 199, Fingers::eAreaWhole));
  EXPECT_TRUE(Fingers::IsFinger(image, 200, Fingers::eAreaWhole));
}

TEST(FingerByMean, ABrighterImageIsNoFinger) {
  EXPECT_FALSE(Fingers::IsFinger(test::gray_image(100, 4, 250), 100, Fingers::eAreaWhole));
}

TEST(FingerByMean, Area0LooksAtTheLast30Columns) {
  ClSimpleBitmap image = test::gray_image(100, 4, 255);
  paint(image, 70, 100, 100);
  EXPECT_TRUE(Fingers::IsFinger(image, 120, Fingers::eAreaLast));
  EXPECT_FALSE(Fingers::IsFinger(image, 120, Fingers::eAreaFirst));
  paint(image, 70, 71, 255);
  EXPECT_FALSE(Fingers::IsFinger(image, 120, Fingers::eAreaLast));
}

TEST(FingerByMean, Area1LooksAtTheFirst30Columns) {
  ClSimpleBitmap image = test::gray_image(100, 4, 255);
  paint(image, 0, 30, 100);
  EXPECT_TRUE(Fingers::IsFinger(image, 120, Fingers::eAreaFirst));
  EXPECT_FALSE(Fingers::IsFinger(image, 120, Fingers::eAreaLast));
  paint(image, 29, 30, 255);
  EXPECT_FALSE(Fingers::IsFinger(image, 120, Fingers::eAreaFirst));
}

TEST(FingerByMean, AnyOtherAreaIsTheWholeRow) {
  ClSimpleBitmap image = test::gray_image(100, 4, 100);
  paint(image, 99, 100, 200);
  EXPECT_FALSE(Fingers::IsFinger(image, 120, Fingers::eArea{7}));
  EXPECT_TRUE(Fingers::IsFinger(image, 121, Fingers::eArea{7}));
}

TEST(FingerByMean, AnImageNarrowerThanTheAreaCountsWhole) {
  const ClSimpleBitmap image = test::gray_image(9, 4, 100);
  EXPECT_TRUE(Fingers::IsFinger(image, 120, Fingers::eAreaFirst));
  EXPECT_TRUE(Fingers::IsFinger(image, 120, Fingers::eAreaLast));
}

TEST(FingerByMean, ABitmapWithoutRowsIsNoFinger) {
  ClSimpleBitmap flat;
  flat.Create(100, 0, 8, 0);
  for (const auto area : {Fingers::eAreaLast, Fingers::eAreaFirst, Fingers::eAreaWhole}) {
    EXPECT_FALSE(Fingers::IsFinger(flat, 255, area));
    EXPECT_FALSE(Fingers::IsFinger(ClSimpleBitmap(), 255, area));
  }
}

/// A bright image with one dark pixel in so many blocks of the probe rows that it passes whole.
struct FingerByContrast : testing::Test {
  FingerByContrast() : image(test::gray_image(100, 40, 255)) {
    image.SetPels(kPels500Dpi, kPels500Dpi);
    for (const unsigned long row : {10UL, 20UL, 30UL}) {
      darken_blocks(row, 3);
    }
  }

  /// Makes the first `count` blocks of a row count, with a bright pixel behind the dark one.
  void darken_blocks(unsigned long row, unsigned long count) {
    test::fill_row(image, row, 255);
    for (unsigned long block = 0; block < count; ++block) {
      test::row_of(image, row)[10 * block] = 192;
    }
  }
  bool finger(Fingers::eArea area = Fingers::eAreaWhole) { return Fingers::IsFinger(image, area); }

  ClSimpleBitmap image;
};

TEST_F(FingerByContrast, EnoughBlocksWithContrastInABrightRowAreAFinger) { EXPECT_TRUE(finger()); }

TEST_F(FingerByContrast, AnEvenImageIsNone) {
  image.SetWhite();
  EXPECT_FALSE(finger());
}

TEST_F(FingerByContrast, AsManyBlocksAsRequiredAreNotEnough) {
  darken_blocks(10, 2);  // a fifth of 10 blocks
  EXPECT_FALSE(finger());
}

TEST_F(FingerByContrast, AContrastOf62IsTooLow) {
  for (unsigned long block = 0; block < 3; ++block) {
    test::row_of(image, 10)[10 * block] = 193;
  }
  EXPECT_FALSE(finger());
}

TEST_F(FingerByContrast, APixelThatLowersTheLowMarkDoesNotRaiseTheHighMark) {
  for (unsigned long x = 0; x < 100; ++x) {
    const unsigned long step = x % 10;
    test::row_of(image, 10)[x] = static_cast<unsigned char>(step == 9 ? 190 : 254 - step);
  }
  EXPECT_FALSE(finger()) << "each pixel of a block is darker than the one before";
}

TEST_F(FingerByContrast, AFirstRowAtTheLimitIsTooDark) {
  for (unsigned long x = 0; x < 100; ++x) {
    test::row_of(image, 10)[x] = x % 10 == 0 ? 128 : 255;  // mean 242.3
  }
  EXPECT_TRUE(finger());
  test::row_of(image, 10)[0] = 123;  // sum 24225
  EXPECT_FALSE(finger());
}

TEST_F(FingerByContrast, LaterRowsHaveItEasierSinceTheSumRunsOn) {
  test::fill_row(image, 20, 0);
  test::fill_row(image, 30, 0);
  EXPECT_TRUE(finger());
}

TEST_F(FingerByContrast, AFirstRowThatFailsEndsTheTest) {
  test::fill_row(image, 10, 255);
  darken_blocks(20, 10);
  darken_blocks(30, 10);
  EXPECT_FALSE(finger());
}

TEST_F(FingerByContrast, TheEdgesAreLookedAtByThemselves) {
  EXPECT_TRUE(finger(Fingers::eAreaFirst));
  EXPECT_FALSE(finger(Fingers::eAreaLast));
}

TEST_F(FingerByContrast, AnEdgeHasALimitOf7267) {
  test::row_of(image, 10)[0] = 106;  // with the two blocks beside it the sum is 7375
  test::row_of(image, 10)[3] = 255 - 108;
  EXPECT_FALSE(finger(Fingers::eAreaFirst)) << "a sum of 7267";
  test::row_of(image, 10)[3] = 255 - 107;
  EXPECT_TRUE(finger(Fingers::eAreaFirst)) << "a sum of 7268";
}

TEST_F(FingerByContrast, OneBlockIsEnoughForAnEdgeOf3Blocks) {
  darken_blocks(10, 1);
  EXPECT_TRUE(finger(Fingers::eAreaFirst)) << "a fifth of 3 is cut to 0";
  darken_blocks(10, 0);
  EXPECT_FALSE(finger(Fingers::eAreaFirst));
}

TEST_F(FingerByContrast, TheProbeRowsOfAnImageBelow4RowsAreAllTheFirst) {
  image = test::gray_image(100, 3, 255);
  image.SetPels(kPels500Dpi, kPels500Dpi);
  EXPECT_FALSE(finger());
  darken_blocks(0, 3);
  test::fill_row(image, 1, 0);
  test::fill_row(image, 2, 0);
  EXPECT_TRUE(finger());
}

TEST_F(FingerByContrast, ABlockThatBeginsWhiteHasItsHighMarkFromThere) {
  darken_blocks(10, 2);
  std::fill_n(test::row_of(image, 10).begin() + 20, 10, static_cast<unsigned char>(192));
  EXPECT_FALSE(finger()) << "an even block";
  test::row_of(image, 10)[20] = 255;
  EXPECT_TRUE(finger());
}

TEST_F(FingerByContrast, BlocksOfOnePixelHaveNoContrast) {
  image.SetPels(1819, 1819);
  EXPECT_FALSE(finger());
}

TEST_F(FingerByContrast, TheLastBlockMayRunOverTheEndOfItsArea) {
  test::row_of(image, 10)[0] = 0;
  test::row_of(image, 10)[1] = 100;
  test::row_of(image, 10)[10] = test::row_of(image, 10)[20] = 255;
  EXPECT_FALSE(finger(Fingers::eAreaFirst)) << "blocks of 10: the sum is 7240";
  image.SetPels(29091, 29091);
  EXPECT_TRUE(finger(Fingers::eAreaFirst)) << "blocks of 16: the second ends at column 32";
}

TEST_F(FingerByContrast, WithoutAResolutionThereIsNoAnswerButNo) {
  image.SetPels(1818, 1818);
  EXPECT_FALSE(finger());
  image.SetPels(0, 0);
  EXPECT_FALSE(finger());
}

TEST_F(FingerByContrast, AnEmptyImageIsNone) {
  EXPECT_FALSE(Fingers::IsFinger(ClSimpleBitmap(), Fingers::eAreaWhole));
}

TEST_F(FingerByContrast, ABitmapWithoutRowsIsNone) {
  ClSimpleBitmap flat;
  flat.Create(100, 0, 8, 0);
  flat.SetPels(kPels500Dpi, kPels500Dpi);
  for (const auto area : {Fingers::eAreaLast, Fingers::eAreaFirst, Fingers::eAreaWhole}) {
    EXPECT_FALSE(Fingers::IsFinger(flat, area));
  }
}

TEST_F(FingerByContrast, AnImageOfOneRowMayShowOne) {
  image = test::gray_image(100, 1, 255);
  image.SetPels(kPels500Dpi, kPels500Dpi);
  darken_blocks(0, 3);
  EXPECT_TRUE(finger());
}

TEST_F(FingerByContrast, ABlockNeverRunsOverTheEndOfTheImage) {
  ClSimpleBitmap small = test::gray_image(3, 1, 255, 255);
  small.SetPels(1000000000, 1000000000);
  EXPECT_FALSE(Fingers::IsFinger(small, Fingers::eAreaWhole));
  EXPECT_FALSE(Fingers::IsFinger(small, Fingers::eAreaFirst));
  EXPECT_FALSE(Fingers::IsFinger(small, Fingers::eAreaLast));
}

TEST_F(FingerByContrast, ItAgreesWithAPlainVersionOnRandomImages) {
  std::mt19937 generator(7);
  int fingers = 0;
  for (int trial = 0; trial < 3000; ++trial) {
    ClSimpleBitmap random = test::gray_image(30 + generator() % 60, 8 + generator() % 9, 250);
    const unsigned long pels = 2000 + generator() % 40000;
    random.SetPels(pels, pels);
    for (unsigned long dot = generator() % 120; dot > 0; --dot) {
      random.Pixel()[generator() % random.PixelSize()] = static_cast<unsigned char>(generator());
    }
    for (const unsigned int area : {0U, 1U, 2U}) {
      const bool expected = test::literal_contrast_test(random, area);
      ASSERT_EQ(Fingers::IsFinger(random, Fingers::eArea{area}), expected) << trial;
      fingers += expected ? 1 : 0;
    }
  }
  EXPECT_GT(fingers, 100);
}

}  // namespace
}  // namespace Osv::lx
