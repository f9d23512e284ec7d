#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include "driver/driver_fixture.h"

namespace Osv::lx {
namespace {

using Bytes = std::vector<unsigned char>;

struct Size {
  unsigned long width;
  unsigned long height;

  friend std::ostream& operator<<(std::ostream& out, const Size& size) {
    return out << size.width << " x " << size.height;
  }
};

/// The rows of a bitmap, padding included.
Bytes rows_of(const utilities::ClSimpleBitmap& bitmap) {
  return {bitmap.Pixel(), bitmap.Pixel() + bitmap.PixelSize()};
}

/// The plain way: exchange the rows pair by pair, then complement what was exchanged.
Bytes turned_and_inverted(const Bytes& before, std::size_t stride, std::size_t height) {
  Bytes after = before;
  for (std::size_t row = 0; row < height; ++row) {
    const std::size_t other = height - 1 - row;
    for (std::size_t x = 0; row != other && x < stride; ++x) {
      after[row * stride + x] = static_cast<unsigned char>(~before[other * stride + x]);
    }
  }
  return after;
}

class PrepareImage : public DriverFixture {
 protected:
  void create(unsigned long width, unsigned long height) { bitmap.Create(width, height, 8, 0); }

  void fill(unsigned char first) {
    std::iota(bitmap.Pixel(), bitmap.Pixel() + bitmap.PixelSize(), first);
  }

  utilities::ClSimpleBitmap bitmap;
};

TEST_F(PrepareImage, IsLogged) {
  create(4, 2);
  driver.PrepareImage(bitmap);
  EXPECT_THAT(story(), ::testing::ElementsAre("7 KR9 scanner. Calling PrepareImage function"));
}

TEST_F(PrepareImage, AnEmptyBitmapStaysEmpty) {
  driver.PrepareImage(bitmap);
  EXPECT_TRUE(bitmap.Empty());
}

TEST_F(PrepareImage, AHeightOf1IsLeftAlone) {
  create(4, 1);
  fill(10);
  driver.PrepareImage(bitmap);
  EXPECT_EQ(rows_of(bitmap), (Bytes{10, 11, 12, 13}));
}

TEST_F(PrepareImage, AHeightOf2OfZerosComesOutWith255) {
  create(5, 2);
  bitmap.SetBlack();
  driver.PrepareImage(bitmap);
  EXPECT_THAT(rows_of(bitmap), ::testing::Each(255));
}

TEST_F(PrepareImage, AHeightOf3ExchangesAndComplementsTheOuterRowsAndLeavesTheMiddle) {
  create(4, 3);
  fill(1);
  driver.PrepareImage(bitmap);
  EXPECT_EQ(rows_of(bitmap), (Bytes{246, 245, 244, 243, 5, 6, 7, 8, 254, 253, 252, 251}));
}

TEST_F(PrepareImage, ThePaddingOfARowGoesAlong) {
  create(1, 2);
  fill(1);
  driver.PrepareImage(bitmap);
  EXPECT_EQ(rows_of(bitmap), (Bytes{250, 249, 248, 247, 254, 253, 252, 251}));
}

TEST_F(PrepareImage, HeaderAndPaletteStay) {
  create(4, 4);
  const std::vector<std::uint32_t> palette(bitmap.Palette(), bitmap.Palette() + 256);
  driver.PrepareImage(bitmap);
  EXPECT_TRUE(std::equal(palette.begin(), palette.end(), bitmap.Palette()));
  EXPECT_EQ(bitmap.Width(), 4UL);
  EXPECT_EQ(bitmap.Height(), 4UL);
}

struct PreparedSizes : PrepareImage, ::testing::WithParamInterface<Size> {};

TEST_P(PreparedSizes, EqualThePlainWay) {
  create(GetParam().width, GetParam().height);
  fill(3);
  const Bytes before = rows_of(bitmap);
  driver.PrepareImage(bitmap);
  EXPECT_EQ(rows_of(bitmap), turned_and_inverted(before, bitmap.BPRow(), bitmap.Height()));
}

INSTANTIATE_TEST_SUITE_P(Sizes, PreparedSizes,
                         ::testing::Values(Size{1, 1}, Size{3, 2}, Size{7, 5}, Size{8, 8},
                                           Size{31, 17}, Size{33, 16}, Size{129, 65},
                                           Size{640, 480}, Size{641, 481}));

TEST_F(PrepareImage, TwiceIsTheImageItselfForAnEvenHeight) {
  create(13, 6);
  fill(77);
  const Bytes before = rows_of(bitmap);
  driver.PrepareImage(bitmap);
  driver.PrepareImage(bitmap);
  EXPECT_EQ(rows_of(bitmap), before);
}

}  // namespace
}  // namespace Osv::lx
