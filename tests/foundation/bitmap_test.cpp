#include "foundation/bitmap.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>
#include <utility>

#include "foundation/bitmap_reference.h"
#include "foundation/exceptions.h"

namespace Osv::utilities {
namespace {

using testing_support::pixels;
using testing_support::reference_word;

ClSimpleBitmap created(unsigned long width, unsigned long height, unsigned long bits,
                       unsigned long compression = 0) {
  ClSimpleBitmap bitmap;
  bitmap.Create(width, height, bits, compression);
  return bitmap;
}

ClSimpleBitmap random_bitmap(unsigned long width, unsigned long height, unsigned long bits) {
  std::mt19937 random(7);
  ClSimpleBitmap bitmap = created(width, height, bits);
  testing_support::fill_randomly(bitmap, random);
  return bitmap;
}

std::vector<unsigned char> block(const ClSimpleBitmap& bitmap) {
  const auto* const bytes = reinterpret_cast<const unsigned char*>(bitmap.BI());
  return {bytes, bytes + bitmap.FullSize()};
}

/// A block from array `new` with a one pixel image in it.
tagBITMAPINFOHEADER* new_block() {
  ClSimpleBitmap bitmap = created(1, 1, 8);
  return reinterpret_cast<tagBITMAPINFOHEADER*>(bitmap.Detach());
}

TEST(Bitmap, IsEmptyAtFirstAndAnswersZeroOrNull) {
  ClSimpleBitmap bitmap;
  EXPECT_TRUE(bitmap.Empty());
  EXPECT_EQ(bitmap.BI(), nullptr);
  EXPECT_EQ(bitmap.Palette(), nullptr);
  EXPECT_EQ(bitmap.Pixel(), nullptr);
  EXPECT_EQ(std::as_const(bitmap).Pixel(), nullptr);
  EXPECT_EQ(bitmap.Width() + bitmap.Height() + bitmap.BitCount(), 0U);
  EXPECT_EQ(bitmap.XPels() + bitmap.YPels(), 0U);
  EXPECT_EQ(bitmap.BPRow() + bitmap.PalSize() + bitmap.PixelSize(), 0U);
}

TEST(Bitmap, ThatIsEmptyIgnoresItsSetters) {
  ClSimpleBitmap bitmap;
  bitmap.SetPels(1, 2);
  bitmap.SetResolution(500, 500);
  bitmap.SetBlack();
  bitmap.SetWhite();
  bitmap.FlipY();
  bitmap.Invert();
  bitmap.Clear();
  EXPECT_TRUE(bitmap.Empty());
}

TEST(BitmapCreate, GivesAnEightBitBlockWithItsHeader) {
  const ClSimpleBitmap bitmap = created(5, 3, 8);
  const tagBITMAPINFOHEADER& bi = *bitmap.BI();
  EXPECT_EQ(bitmap.FullSize(), 40 + 1024 + 8 * 3U);
  EXPECT_EQ(bi.biSize, 40U);
  EXPECT_EQ(bi.biWidth, 5);
  EXPECT_EQ(bi.biHeight, 3);
  EXPECT_EQ(bi.biPlanes, 1);
  EXPECT_EQ(bi.biBitCount, 8);
  EXPECT_EQ(bi.biSizeImage, 24U);
  EXPECT_EQ(bi.biCompression + bi.biClrUsed + bi.biClrImportant, 0U);
  EXPECT_EQ(bi.biXPelsPerMeter + bi.biYPelsPerMeter, 0);
}

TEST(BitmapCreate, AnswersTheQueriesFromTheHeader) {
  const ClSimpleBitmap bitmap = created(5, 3, 8);
  EXPECT_FALSE(bitmap.Empty());
  EXPECT_EQ(bitmap.Width(), 5U);
  EXPECT_EQ(bitmap.Height(), 3U);
  EXPECT_EQ(bitmap.BitCount(), 8U);
  EXPECT_EQ(bitmap.BPRow(), 8U);
  EXPECT_EQ(bitmap.PalSize(), 256U);
  EXPECT_EQ(bitmap.PixelSize(), 24U);
  EXPECT_EQ(reinterpret_cast<unsigned char*>(bitmap.Palette()),
            reinterpret_cast<unsigned char*>(bitmap.BI()) + 40);
  EXPECT_EQ(bitmap.Pixel(), reinterpret_cast<unsigned char*>(bitmap.BI()) + 40 + 1024);
}

TEST(BitmapCreate, WritesTheIdentityRampAtDepth8) {
  const ClSimpleBitmap bitmap = created(1, 1, 8);
  for (std::uint32_t i = 0; i < 256; ++i) {
    ASSERT_EQ(bitmap.Palette()[i], i * 0x010101U);
  }
}

TEST(BitmapCreate, WritesARampOfEqualStepsAtEveryPaletteDepth) {
  for (const unsigned long bits : {1UL, 2UL, 3UL, 4UL, 5UL, 6UL, 7UL}) {
    const ClSimpleBitmap bitmap = created(3, 1, bits);
    const std::uint32_t entries = 1U << bits;
    ASSERT_EQ(bitmap.PalSize(), entries);
    for (std::uint32_t i = 0; i < entries; ++i) {
      ASSERT_EQ(bitmap.Palette()[i], i * (255 / (entries - 1)) * 0x010101U) << bits << ' ' << i;
    }
  }
}

TEST(BitmapCreate, HasBlackAndWhiteAtDepth1) {
  const ClSimpleBitmap bitmap = created(1, 1, 1);
  EXPECT_EQ(bitmap.Palette()[0], 0U);
  EXPECT_EQ(bitmap.Palette()[1], 0xFFFFFFU);
}

TEST(BitmapCreate, StepsBy17AtDepth4) {
  EXPECT_EQ(created(1, 1, 4).Palette()[1], 0x111111U);
  EXPECT_EQ(created(1, 1, 4).Palette()[15], 0xFFFFFFU);
}

TEST(BitmapCreate, HasNoPaletteAtDepth24) {
  const ClSimpleBitmap bitmap = created(3, 2, 24);
  EXPECT_EQ(bitmap.PalSize(), 0U);
  EXPECT_EQ(bitmap.Pixel(), reinterpret_cast<unsigned char*>(bitmap.BI()) + 40);
  EXPECT_EQ(bitmap.FullSize(), 40 + 12 * 2U);
}

TEST(BitmapCreate, HasThreeMasksAboveDepth8WithCompression3) {
  for (const unsigned long bits : {16UL, 24UL, 32UL}) {
    const ClSimpleBitmap bitmap = created(5, 3, bits, 3);
    EXPECT_EQ(bitmap.PalSize(), 3U);
    EXPECT_EQ(bitmap.FullSize(), 52 + bitmap.PixelSize());
    EXPECT_EQ(bitmap.BI()->biCompression, 3U);
  }
}

TEST(BitmapCreate, WritesItsMasksAsThreeWideNumbers) {
  const ClSimpleBitmap low = created(9, 9, 16, 3);
  const ClSimpleBitmap high = created(9, 9, 32, 3);
  const std::uint32_t low_words[] = {31, 0, 992, 0, 31744, 0};
  const std::uint32_t high_words[] = {255, 0, 65280, 0, 16711680, 0};
  for (unsigned long i = 0; i < 6; ++i) {
    EXPECT_EQ(reference_word(low, i), low_words[i]);
    EXPECT_EQ(reference_word(high, i), high_words[i]);
  }
}

TEST(BitmapCreate, WritesTheMasksOverTheRampOfAPaletteDepth) {
  const ClSimpleBitmap bitmap = created(9, 9, 8, 3);
  EXPECT_EQ(bitmap.PalSize(), 256U);
  EXPECT_EQ(bitmap.Palette()[0], 31U);
  EXPECT_EQ(bitmap.Palette()[2], 992U);
  EXPECT_EQ(bitmap.Palette()[4], 31744U);
  EXPECT_EQ(bitmap.Palette()[6], 0x060606U);
}

TEST(BitmapCreate, HasRoomForTheWideMasksInTheTiniestImages) {
  for (const unsigned long bits : {0UL, 1UL, 2UL, 8UL, 16UL, 24UL, 32UL}) {
    for (const unsigned long side : {0UL, 1UL}) {
      EXPECT_EQ(created(side, side, bits, 3).BI()->biCompression, 3U);
    }
  }
}

TEST(BitmapCreate, AcceptsAnImageWithoutPixels) {
  const ClSimpleBitmap bitmap = created(0, 0, 8);
  EXPECT_FALSE(bitmap.Empty());
  EXPECT_EQ(bitmap.PixelSize(), 0U);
}

TEST(BitmapCreate, ReplacesTheImageBefore) {
  ClSimpleBitmap bitmap = created(5, 3, 8);
  bitmap.SetPels(7, 7);
  bitmap.Create(2, 2, 24, 0);
  EXPECT_EQ(bitmap.Width(), 2U);
  EXPECT_EQ(bitmap.XPels(), 0U);
}

struct Size {
  unsigned long width;
  unsigned long height;
  unsigned long bits;
  unsigned long compression;
};

class BitmapOfAnAbsurdSize : public testing::TestWithParam<Size> {};

constexpr unsigned long kHuge = ~0UL;

INSTANTIATE_TEST_SUITE_P(Sizes, BitmapOfAnAbsurdSize,
                         testing::Values(Size{kHuge, 1, 8, 0}, Size{1, kHuge, 8, 0},
                                         Size{1, 1, kHuge, 0}, Size{1, 1, 65536, 0},
                                         Size{1, 1, 8, kHuge}, Size{2147483648UL, 1, 1, 0},
                                         Size{1, 2147483648UL, 1, 0}, Size{65536, 65536, 8, 0},
                                         Size{2147483647, 2147483647, 32, 0},
                                         Size{2147483647, 2147483647, 65535, 0},
                                         Size{1UL << 32, 1UL << 32, 8, 0}));

TEST_P(BitmapOfAnAbsurdSize, IsRefusedAndLeftEmpty) {
  ClSimpleBitmap bitmap = created(1, 1, 8);
  const Size& size = GetParam();
  EXPECT_THROW(bitmap.Create(size.width, size.height, size.bits, size.compression),
               CXMemoryAllocException);
  EXPECT_TRUE(bitmap.Empty());
}

TEST(BitmapStride, IsAMultipleOfFourBytes) {
  EXPECT_EQ(ClSimpleBitmap::BPRow(0, 8), 0U);
  EXPECT_EQ(ClSimpleBitmap::BPRow(1, 8), 4U);
  EXPECT_EQ(ClSimpleBitmap::BPRow(4, 8), 4U);
  EXPECT_EQ(ClSimpleBitmap::BPRow(5, 8), 8U);
  EXPECT_EQ(ClSimpleBitmap::BPRow(33, 1), 8U);
  EXPECT_EQ(ClSimpleBitmap::BPRow(3, 24), 12U);
  EXPECT_EQ(ClSimpleBitmap::BPRow(3, 16), 8U);
}

TEST(BitmapPaletteSize, FollowsTheHeader) {
  tagBITMAPINFOHEADER bi{};
  EXPECT_EQ(ClSimpleBitmap::PalSize(nullptr), 0U);
  bi.biBitCount = 4;
  EXPECT_EQ(ClSimpleBitmap::PalSize(&bi), 16U);
  bi.biClrUsed = 5;
  bi.biCompression = 3;
  EXPECT_EQ(ClSimpleBitmap::PalSize(&bi), 5U);
  bi.biBitCount = 24;
  EXPECT_EQ(ClSimpleBitmap::PalSize(&bi), 3U);
  bi.biCompression = 0;
  EXPECT_EQ(ClSimpleBitmap::PalSize(&bi), 5U);
}

TEST(BitmapStaticForms, MeasureABlockOfAnyOwner) {
  const ClSimpleBitmap bitmap = created(5, 3, 4);
  tagBITMAPINFOHEADER* const bi = bitmap.BI();
  EXPECT_EQ(ClSimpleBitmap::FullSize(bi), 40 + 64 + 4 * 3U);
  EXPECT_EQ(ClSimpleBitmap::Pixel(bi), reinterpret_cast<unsigned char*>(bi) + 40 + 64);
  EXPECT_EQ(ClSimpleBitmap::Pixel(nullptr), nullptr);
}

TEST(BitmapFill, DoesNothingWithoutABlock) {
  ClSimpleBitmap::FillBI(nullptr, 1, 1, 8, 3);
  SUCCEED();
}

TEST(BitmapFill, SetsEveryFieldOfAUsedHeader) {
  ClSimpleBitmap bitmap = created(2, 2, 8);
  std::memset(bitmap.BI(), 0xEE, 40);
  ClSimpleBitmap::FillBI(bitmap.BI(), 2, 2, 8, 0);
  EXPECT_EQ(block(bitmap).size(), block(created(2, 2, 8)).size());
  EXPECT_EQ(std::memcmp(bitmap.BI(), created(2, 2, 8).BI(), 40), 0);
}

TEST(BitmapFill, LeavesWhatIsNoPaletteAlone) {
  ClSimpleBitmap bitmap = created(2, 2, 24);
  bitmap.SetWhite();
  ClSimpleBitmap::FillBI(bitmap.BI(), 2, 2, 24, 0);
  EXPECT_EQ(pixels(bitmap), std::vector<unsigned char>(16, 255));
}

TEST(BitmapCopy, IsDeep) {
  ClSimpleBitmap original = random_bitmap(5, 3, 8);
  const ClSimpleBitmap copy(original);
  const std::vector<unsigned char> before = block(original);
  original.SetWhite();
  EXPECT_EQ(block(copy), before);
}

TEST(BitmapCopy, TakesAnyBlockWithItsMasks) {
  ClSimpleBitmap original = created(5, 3, 16, 3);
  original.SetWhite();
  ClSimpleBitmap copy;
  copy.Copy(original.BI());
  EXPECT_EQ(block(copy), block(original));
}

TEST(BitmapCopy, OfNothingEmptiesTheBitmap) {
  ClSimpleBitmap bitmap = created(1, 1, 8);
  bitmap.Copy(nullptr);
  EXPECT_TRUE(bitmap.Empty());
}

TEST(BitmapAssignment, CopiesTheBlock) {
  const ClSimpleBitmap original = random_bitmap(5, 3, 24);
  ClSimpleBitmap copy = created(9, 9, 8);
  copy = original;
  EXPECT_EQ(block(copy), block(original));
  EXPECT_NE(copy.BI(), original.BI());
}

TEST(BitmapAssignment, FromAnEmptyBitmapEmptiesTheTarget) {
  ClSimpleBitmap bitmap = created(1, 1, 8);
  bitmap = ClSimpleBitmap();
  EXPECT_TRUE(bitmap.Empty());
}

TEST(BitmapAssignment, ToItselfDoesNothing) {
  ClSimpleBitmap bitmap = random_bitmap(5, 3, 8);
  const tagBITMAPINFOHEADER* const before = bitmap.BI();
  const ClSimpleBitmap& same = bitmap;
  bitmap = same;
  EXPECT_EQ(bitmap.BI(), before);
}

TEST(BitmapCopy, OfItsOwnBlockDoesNothing) {
  ClSimpleBitmap bitmap = random_bitmap(5, 3, 8);
  const ClSimpleBitmap before = bitmap;
  bitmap.Copy(bitmap.BI());
  ASSERT_EQ(bitmap.FullSize(), before.FullSize());
  EXPECT_EQ(std::memcmp(bitmap.BI(), before.BI(), before.FullSize()), 0);
}

TEST(BitmapAttach, TakesTheBlockAndReleasesTheOneBefore) {
  ClSimpleBitmap bitmap = created(3, 3, 8);
  tagBITMAPINFOHEADER* const attached = new_block();
  bitmap.Attach(attached);
  EXPECT_EQ(bitmap.BI(), attached);
  EXPECT_EQ(bitmap.Width(), 1U);
}

TEST(BitmapDetach, GivesTheBlockAwayAndLeavesNothing) {
  ClSimpleBitmap bitmap = created(3, 3, 8);
  const tagBITMAPINFOHEADER* const bi = bitmap.BI();
  const std::unique_ptr<unsigned char[]> detached(bitmap.Detach());
  EXPECT_EQ(detached.get(), reinterpret_cast<const unsigned char*>(bi));
  EXPECT_TRUE(bitmap.Empty());
  bitmap.Clear();
  EXPECT_EQ(bitmap.Detach(), nullptr);
}

TEST(BitmapResolution, IsStoredAsGivenOrConvertedFromDotsPerInch) {
  ClSimpleBitmap bitmap = created(1, 1, 8);
  bitmap.SetPels(123, 456);
  EXPECT_EQ(bitmap.XPels(), 123U);
  EXPECT_EQ(bitmap.YPels(), 456U);
  bitmap.SetResolution(500, 500);
  EXPECT_EQ(bitmap.XPels(), 19685U);
  EXPECT_EQ(bitmap.YPels(), 19685U);
  bitmap.SetResolution(1, 72);
  EXPECT_EQ(bitmap.XPels(), 39U);
  EXPECT_EQ(bitmap.YPels(), 2834U);
}

TEST(BitmapFillColours, SetEveryByteWithItsPadding) {
  ClSimpleBitmap bitmap = random_bitmap(5, 3, 8);
  bitmap.SetBlack();
  EXPECT_EQ(pixels(bitmap), std::vector<unsigned char>(24, 0));
  bitmap.SetWhite();
  EXPECT_EQ(pixels(bitmap), std::vector<unsigned char>(24, 255));
  EXPECT_EQ(bitmap.Palette()[1], 0x010101U);
}

struct Turned {
  unsigned long width;
  unsigned long height;
  unsigned long bits;
};

/// Images of odd sizes, also without or with a single row.
class BitmapTurning : public testing::TestWithParam<Turned> {
 protected:
  ClSimpleBitmap m_bitmap = random_bitmap(GetParam().width, GetParam().height, GetParam().bits);
  const std::vector<unsigned char> m_before = pixels(m_bitmap);
};

INSTANTIATE_TEST_SUITE_P(Sizes, BitmapTurning,
                         testing::Values(Turned{5, 0, 8}, Turned{5, 1, 8}, Turned{5, 2, 8},
                                         Turned{5, 3, 8}, Turned{7, 5, 1}, Turned{3, 7, 24},
                                         Turned{33, 4, 4}, Turned{0, 3, 8}, Turned{1, 9, 32}));

TEST_P(BitmapTurning, PutsEachRowAtTheOppositePlace) {
  m_bitmap.FlipY();
  const unsigned long stride = m_bitmap.BPRow();
  for (unsigned long i = 0; i < m_before.size(); ++i) {
    const unsigned long row = m_bitmap.Height() - 1 - i / stride;
    ASSERT_EQ(m_bitmap.Pixel()[i], m_before[row * stride + i % stride]);
  }
}

TEST_P(BitmapTurning, TwiceGivesBackTheImage) {
  m_bitmap.FlipY();
  m_bitmap.FlipY();
  EXPECT_EQ(pixels(m_bitmap), m_before);
}

TEST_P(BitmapTurning, LeavesHeaderAndPaletteAlone) {
  const ClSimpleBitmap original(m_bitmap);
  m_bitmap.FlipY();
  m_bitmap.Invert();
  EXPECT_EQ(std::memcmp(m_bitmap.BI(), original.BI(), 40 + 4 * original.PalSize()), 0);
}

TEST_P(BitmapTurning, ComplementsEachByteWithItsPadding) {
  m_bitmap.Invert();
  for (unsigned long i = 0; i < m_before.size(); ++i) {
    ASSERT_EQ(m_bitmap.Pixel()[i], 255 - m_before[i]);
  }
}

TEST_P(BitmapTurning, ComplementsTwiceToTheSameImage) {
  m_bitmap.Invert();
  m_bitmap.Invert();
  EXPECT_EQ(pixels(m_bitmap), m_before);
}

TEST_P(BitmapTurning, DoesTheSameOnRowsOfAnyOwner) {
  std::vector<unsigned char> rows = m_before;
  const auto& [width, height, bits] = GetParam();
  ClSimpleBitmap::FlipY(width, height, bits, rows.data());
  ClSimpleBitmap::Invert(width, height, bits, rows.data());
  m_bitmap.FlipY();
  m_bitmap.Invert();
  EXPECT_EQ(rows, pixels(m_bitmap));
}

}  // namespace
}  // namespace Osv::utilities
