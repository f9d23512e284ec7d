#include "detection/block_contrast.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <vector>

#include "support/guarded_block.h"

namespace Osv::lx {
namespace {

using Bytes = std::vector<unsigned char>;
using test::GuardedBlock;

constexpr std::size_t kSizes = 257;
constexpr std::size_t kAlignments = 16;

/// The marks, moved pixel by pixel.
int plain_contrast(const Bytes& block) {
  int low = 255;
  int high = 0;
  for (const unsigned char pixel : block) {
    if (pixel < low) {
      low = pixel;
    } else if (pixel > high) {
      high = pixel;
    }
  }
  return high - low;
}

struct BlockContrast : testing::Test {
  /// Where the block ends at a guard, and at each distance from the other guard.
  void expect_plain(const Bytes& block) {
    expect_at(guarded.before_guard(block.size()), block);
    for (std::size_t offset = 0; offset < kAlignments; ++offset) {
      expect_at(guarded.behind_guard(offset, block.size()), block);
    }
  }

  void expect_at(std::span<unsigned char> place, const Bytes& block) {
    std::copy(block.begin(), block.end(), place.begin());
    ASSERT_EQ(contrast_of(place), plain_contrast(block)) << block.size() << " pixels";
    ASSERT_TRUE(guarded.untouched_around(place)) << block.size() << " pixels";
  }

  Bytes block_of(std::size_t size, const std::function<unsigned int(std::size_t)>& pixel) {
    Bytes block(size);
    for (std::size_t i = 0; i < size; ++i) {
      block[i] = static_cast<unsigned char>(pixel(i));
    }
    return block;
  }

  GuardedBlock guarded{2 * kSizes};
  std::mt19937 generator{3};
};

TEST_F(BlockContrast, OfNoiseIsThatOfThePlainMarksAtEverySizeAndAlignment) {
  for (std::size_t size = 0; size <= kSizes; ++size) {
    expect_plain(block_of(size, [&](std::size_t) { return generator(); }));
  }
}

TEST_F(BlockContrast, OfAFallWithOneRiseIsThatOfThePlainMarksAtEverySize) {
  for (std::size_t size = 1; size <= kSizes; ++size) {
    const std::size_t rise = generator() % size;
    expect_plain(block_of(size, [&](std::size_t i) {
      return static_cast<unsigned int>(254 - i * 250 / size + (i == rise ? 30 : 0));
    }));
  }
}

TEST_F(BlockContrast, OfFewLevelsIsThatOfThePlainMarksAtEverySize) {
  for (std::size_t size = 1; size <= kSizes; ++size) {
    for (const unsigned int levels : {2U, 3U, 6U}) {
      expect_plain(
          block_of(size, [&](std::size_t) { return 255 - generator() % levels * (size % 40); }));
    }
  }
}

TEST_F(BlockContrast, OfABlockThatOnlyFallsIsBelowZeroByItsDarkest) {
  EXPECT_EQ(contrast_of(Bytes{9, 7, 5}), -5);
  EXPECT_EQ(contrast_of(Bytes{90, 80, 70, 60, 50, 40, 30, 20, 10, 5, 3}), -3);
}

TEST_F(BlockContrast, OfABlockThatBeginsWhiteHasItsHighMarkFromThere) {
  EXPECT_EQ(contrast_of(Bytes{255, 7, 5}), 250);
  EXPECT_EQ(contrast_of(Bytes{255, 80, 70, 60, 50, 40, 30, 20, 10, 5, 3}), 252);
}

std::size_t plain_count(const Bytes& pixels, std::size_t block, int contrast) {
  std::size_t count = 0;
  for (std::size_t from = 0; from < pixels.size(); from += block) {
    const auto begin = pixels.begin() + static_cast<std::ptrdiff_t>(from);
    const std::size_t size = std::min(block, pixels.size() - from);
    const Bytes single(begin, begin + static_cast<std::ptrdiff_t>(size));
    count += plain_contrast(single) > contrast ? 1 : 0;
  }
  return count;
}

TEST_F(BlockContrast, IsCountedBlockByBlockHoweverFarApartTheBlocksWithContrastAre) {
  for (std::size_t block = 1; block <= 40; ++block) {
    for (const unsigned int apart : {3U, 50U, 400U}) {
      const Bytes pixels =
          block_of(1000 + block, [&](std::size_t) { return generator() % apart == 0 ? 190 : 253; });
      const std::size_t count = plain_count(pixels, block, 62);
      EXPECT_FALSE(has_contrast(pixels, block, count, 62)) << block;
      EXPECT_TRUE(count == 0 || has_contrast(pixels, block, count - 1, 62)) << block;
    }
  }
}

TEST_F(BlockContrast, OfABlockLongerThanThePixelsIsThatOfThePixels) {
  const Bytes pixels{255, 10, 200};
  EXPECT_TRUE(has_contrast(pixels, 1UL << 50, 0, 244));
  EXPECT_FALSE(has_contrast(pixels, 1UL << 50, 0, 245));
}

}  // namespace
}  // namespace Osv::lx
