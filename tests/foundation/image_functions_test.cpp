#include "foundation/image_functions.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "foundation/bitmap.h"
#include "foundation/exceptions.h"
#include "support/guarded_block.h"

namespace Osv::img {
namespace {

/// Releases a block the way it was allocated.
struct Release {
  bool used_malloc;
  void operator()(unsigned char* block) const {
    if (used_malloc) {
      std::free(block);
    } else {
      delete[] block;
    }
  }
};

using Block = std::unique_ptr<unsigned char, Release>;

tagBITMAPINFOHEADER* header(const Block& block) {
  return reinterpret_cast<tagBITMAPINFOHEADER*>(block.get());
}

std::vector<unsigned char> numbered(std::size_t size) {
  std::vector<unsigned char> bytes(size);
  for (std::size_t i = 0; i < size; ++i) {
    bytes[i] = static_cast<unsigned char>(i * 3 + 1);
  }
  return bytes;
}

tagBITMAPINFOHEADER shaped(std::int32_t width, std::int32_t height, std::uint16_t bits) {
  tagBITMAPINFOHEADER bi{};
  bi.biWidth = width;
  bi.biHeight = height;
  bi.biBitCount = bits;
  return bi;
}

TEST(DotsPerInch, BecomePixelsPerMetreCutToWholeNumbers) {
  EXPECT_EQ(dpi2pels(500), 19685U);
  EXPECT_EQ(dpi2pels(1000), 39370U);
  EXPECT_EQ(dpi2pels(1), 39U);
  EXPECT_EQ(dpi2pels(0), 0U);
}

TEST(ImageStride, IsPaddedToFourBytes) {
  EXPECT_EQ(image_bpr(1, 8), 4U);
  EXPECT_EQ(image_bpr(4, 8), 4U);
  EXPECT_EQ(image_bpr(5, 8), 8U);
  EXPECT_EQ(image_bpr(33, 1), 8U);
  const tagBITMAPINFOHEADER bi = shaped(5, 1, 24);
  EXPECT_EQ(bmp_bpr(&bi), 16U);
}

TEST(ImageSize, CountsStrideTimesHeight) { EXPECT_EQ(bmp_pixel_size(5, 3, 8), 24U); }

TEST(ImageSize, CountsAPaletteAtEveryDepth) {
  EXPECT_EQ(bmp_size(5, 3, 8), 1024 + 24 + 40U);
  EXPECT_EQ(bmp_size(5, 3, 1), 8 + 12 + 40U);
  EXPECT_EQ(bmp_size(5, 3, 16), (4U << 16) + 36 + 40U);
}

TEST(ImageSize, OfABlockCountsThePaletteOfItsHeader) {
  tagBITMAPINFOHEADER bi = shaped(5, 3, 8);
  EXPECT_EQ(bmp_size(&bi), 40 + 1024 + 24U);
  bi.biClrUsed = 7;
  EXPECT_EQ(bmp_size(&bi), 40 + 28 + 24U);
}

TEST(PaletteSize, IsFullWhereTheHeaderTellsNone) {
  tagBITMAPINFOHEADER bi = shaped(1, 1, 4);
  EXPECT_EQ(bmp_palette_size(&bi), 16U);
  bi.biCompression = 3;
  EXPECT_EQ(bmp_palette_size(&bi), 16U);
}

TEST(PaletteSize, IsThreeForMasksOfAPaletteDepthThatTellsItsEntries) {
  tagBITMAPINFOHEADER bi = shaped(1, 1, 8);
  bi.biClrUsed = 7;
  EXPECT_EQ(bmp_palette_size(&bi), 7U);
  bi.biCompression = 3;
  EXPECT_EQ(bmp_palette_size(&bi), 3U);
  EXPECT_EQ(utilities::ClSimpleBitmap::PalSize(&bi), 7U);
}

TEST(PaletteSize, AboveEightBitsIsWhatTheHeaderTellsWhateverTheMasks) {
  tagBITMAPINFOHEADER bi = shaped(1, 1, 16);
  bi.biCompression = 3;
  EXPECT_EQ(bmp_palette_size(&bi), 0U);
  EXPECT_EQ(utilities::ClSimpleBitmap::PalSize(&bi), 3U);
  bi.biClrUsed = 5;
  EXPECT_EQ(bmp_palette_size(&bi), 5U);
}

TEST(ImagePixels, BeginBehindThePalette) {
  tagBITMAPINFOHEADER bi = shaped(1, 1, 8);
  bi.biClrUsed = 2;
  EXPECT_EQ(bmp_pixel(&bi), reinterpret_cast<unsigned char*>(&bi) + 48);
  EXPECT_EQ(bmp_pixel(const_cast<const tagBITMAPINFOHEADER*>(&bi)), bmp_pixel(&bi));
}

TEST(ImageInvert, ComplementsEveryByteOfTheRows) {
  std::vector<unsigned char> rows = numbered(8 * 3 + 1);
  const std::vector<unsigned char> before = rows;
  image_invert(5, 3, 8, rows.data());
  for (std::size_t i = 0; i < 24; ++i) {
    EXPECT_EQ(rows[i], 255 - before[i]);
  }
  EXPECT_EQ(rows.back(), before.back());
}

TEST(ClipBitmap, GivesNull) { EXPECT_EQ(clip_bitmap(nullptr, 0, 0, 1, 1, 0, 0, true), nullptr); }

TEST(FillImageData, PadsTheRowsAndTurnsThemUpsideDown) {
  const std::vector<unsigned char> from{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
  std::vector<unsigned char> to(24, 99);
  fill_image_data(to.data(), from.data(), 5, 3, 8);
  EXPECT_EQ(to, (std::vector<unsigned char>{11, 12, 13, 14, 15, 99, 99, 99,  //
                                            6,  7,  8,  9,  10, 99, 99, 99,  //
                                            1,  2,  3,  4,  5,  99, 99, 99}));
}

TEST(FillImageData, TakesWidthBytesOfARowWhateverTheDepth) {
  const std::vector<unsigned char> from{1, 2, 3, 4};
  std::vector<unsigned char> to(16, 99);
  fill_image_data(to.data(), from.data(), 2, 2, 24);
  EXPECT_EQ(to, (std::vector<unsigned char>{3, 4, 99, 99, 99, 99, 99, 99,  //
                                            1, 2, 99, 99, 99, 99, 99, 99}));
}

// Below 8 bits a row of the target may be shorter than the width in bytes.
TEST(FillImageData, TakesNoMoreThanTheStrideBelow8Bits) {
  const std::vector<unsigned char> from{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  std::vector<unsigned char> to(12, 99);
  fill_image_data(to.data(), from.data(), 6, 2, 4);
  EXPECT_EQ(to, (std::vector<unsigned char>{7, 8, 9, 10, 1, 2, 3, 4, 99, 99, 99, 99}));
}

TEST(FillImageData, TakesWidthBytesBelow8BitsWhereTheyFit) {
  const std::vector<unsigned char> from{1, 2, 3, 4, 5, 6};
  std::vector<unsigned char> to(8, 99);
  fill_image_data(to.data(), from.data(), 3, 2, 1);
  EXPECT_EQ(to, (std::vector<unsigned char>{4, 5, 6, 99, 1, 2, 3, 99}));
}

// Whoever counts them is never done.
TEST(FillImageData, GoesThroughNoRowsWithoutBytes) {
  std::vector<unsigned char> to{99};
  fill_image_data(to.data(), to.data(), 0, ~0UL, 8);
  EXPECT_EQ(to[0], 99);
}

TEST(AllZero, LooksAtEveryByteAndAtNoOther) {
  std::vector<unsigned char> bytes(99, 0);
  bytes.push_back(1);
  EXPECT_TRUE(all_zero(bytes.data(), 99));
  for (std::size_t i = 0; i < 99; ++i) {
    EXPECT_FALSE(all_zero(bytes.data() + i, 100 - i)) << i;
  }
  EXPECT_FALSE(all_zero(bytes.data() + 99, 1));
}

TEST(AllZero, HoldsForNoBytes) { EXPECT_TRUE(all_zero(nullptr, 0)); }

/// Both ways to allocate a block.
TEST(GrayRamp, WritesNothingAroundItsEntries) {
  test::GuardedBlock memory(4096);
  for (const unsigned long bits : {1UL, 2UL, 4UL, 8UL}) {
    const auto block = memory.behind_guard(512, sizeof(tagBITMAPINFOHEADER) + (4UL << bits));
    fill_gray_ramp(reinterpret_cast<tagBITMAPINFOHEADER*>(block.data()), bits);
    EXPECT_TRUE(memory.untouched_around(block)) << bits;
  }
}

class BlockFromEitherAllocator : public testing::TestWithParam<bool> {
 protected:
  static Block owned(unsigned char* block) { return {block, Release{GetParam()}}; }
};

INSTANTIATE_TEST_SUITE_P(Allocators, BlockFromEitherAllocator, testing::Bool());

TEST_P(BlockFromEitherAllocator, IsACopyOfTheWholeBlock) {
  utilities::ClSimpleBitmap original;
  original.Create(5, 3, 4, 0);
  original.SetWhite();
  const Block copy = owned(create_bmp_copy(original.BI(), GetParam()));
  EXPECT_EQ(std::memcmp(copy.get(), original.BI(), original.FullSize()), 0);
}

TEST_P(BlockFromEitherAllocator, HasHeaderAndGrayRamp) {
  const Block block = owned(create_bmp(5, 3, 8, 19685, 100, nullptr, GetParam()));
  utilities::ClSimpleBitmap expected;
  expected.Create(5, 3, 8, 0);
  expected.SetPels(19685, 100);
  EXPECT_EQ(std::memcmp(block.get(), expected.BI(), 40 + 1024), 0);
}

TEST_P(BlockFromEitherAllocator, HoldsThePaddedRowsOfTheCaller) {
  for (const unsigned long bits : {1UL, 4UL, 8UL, 16UL}) {
    const std::vector<unsigned char> rows = numbered(bmp_pixel_size(5, 3, bits));
    const Block block = owned(create_bmp(5, 3, bits, 0, 0, rows.data(), GetParam()));
    EXPECT_EQ(std::memcmp(bmp_pixel(header(block)), rows.data(), rows.size()), 0) << bits;
  }
}

TEST_P(BlockFromEitherAllocator, IsRefusedForASizeThatNoHeaderHolds) {
  EXPECT_THROW((void)create_bmp(~0UL, 1, 8, 0, 0, nullptr, GetParam()), CXMemoryAllocException);
  EXPECT_THROW((void)create_bmp(65536, 65536, 8, 0, 0, nullptr, GetParam()),
               CXMemoryAllocException);
  EXPECT_THROW((void)create_bmp(1, 1, 33, 0, 0, nullptr, GetParam()), CXMemoryAllocException);
}

}  // namespace
}  // namespace Osv::img
