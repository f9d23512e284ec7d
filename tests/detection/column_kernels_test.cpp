#include "detection/column_kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <span>
#include <vector>

#include "detection/literal_rolled_finger_lx1.h"

namespace Osv::lx {
namespace {

using test::LiteralRolledFingerLX1;
using utilities::ClSimpleBitmap;

void expect_plain_sums(const ClSimpleBitmap& image) {
  std::vector<unsigned long> sums(image.Width(), 12345);
  column_sums(image, sums);
  for (unsigned long column = 0; column < image.Width(); ++column) {
    ASSERT_EQ(sums[column], LiteralRolledFingerLX1::column_sum(image, column))
        << "column " << column << " of " << image.Width() << " x " << image.Height();
  }
}

TEST(ColumnSums, EqualThePlainOnesAtEveryWidthUpTo257) {
  for (unsigned long width = 1; width <= 257; ++width) {
    for (unsigned long height = 0; height <= 9; ++height) {
      expect_plain_sums(test::noise_image(width, height, static_cast<unsigned>(width + height)));
    }
  }
}

TEST(ColumnSums, EqualThePlainOnesOfTallImages) {
  for (const unsigned long height :
       {254UL, 255UL, 256UL, 257UL, 263UL, 264UL, 511UL, 513UL, 770UL}) {
    expect_plain_sums(test::noise_image(37, height, 5));
  }
}

TEST(ColumnSums, EqualThePlainOnesOfWideImages) {
  for (const unsigned long width : {2047UL, 2048UL, 2049UL, 2050UL, 4096UL, 4099UL}) {
    expect_plain_sums(test::noise_image(width, 11, 5));
  }
}

TEST(ColumnSums, WhiteColumnsDoNotOverflow) {
  expect_plain_sums(test::gray_image(67, 1031, 255, 255));
}

TEST(ColumnSums, OfTheFirstColumnsLeaveTheRestAlone) {
  const ClSimpleBitmap image = test::noise_image(40, 12, 5);
  constexpr std::size_t kFirst = 7;
  std::vector<unsigned long> sums(image.Width(), 1);
  column_sums(image, std::span(sums).first(kFirst));
  for (std::size_t i = 0; i < sums.size(); ++i) {
    EXPECT_EQ(sums[i], i < kFirst ? LiteralRolledFingerLX1::column_sum(image, i) : 1UL) << i;
  }
}

TEST(ColumnSums, OfAnEmptyImageAreNone) {
  std::vector<unsigned long> sums;
  column_sums(ClSimpleBitmap(), sums);
  EXPECT_TRUE(sums.empty());
}

/// Copies marked columns and expects the target to be what column after column gives.
void expect_plain_copy(const ClSimpleBitmap& source, const ClSimpleBitmap& target,
                       const std::vector<unsigned char>& marks, unsigned long first = 0) {
  ClSimpleBitmap copied = target;
  copy_columns(source, copied, first, marks);
  ClSimpleBitmap expected = target;
  for (unsigned long i = 0; i < marks.size(); ++i) {
    if (marks[i] != 0) {
      LiteralRolledFingerLX1::copy_column(source, expected, first + i);
    }
  }
  EXPECT_TRUE(test::same_block(copied, expected)) << source.Width() << " x " << source.Height();
}

/// One mark in so many, by chance.
std::vector<unsigned char> random_marks(unsigned long count, unsigned int one_in,
                                        std::mt19937& generator) {
  std::vector<unsigned char> marks(count);
  std::generate(marks.begin(), marks.end(), [&] {
    return generator() % one_in == 0 ? kColumnMarked : static_cast<unsigned char>(0);
  });
  return marks;
}

TEST(CopyColumns, EqualsThePlainCopyAtEveryWidthUpTo257) {
  std::mt19937 generator(3);
  for (unsigned long width = 1; width <= 257; ++width) {
    const unsigned long height = width % 10;
    expect_plain_copy(test::noise_image(width, height, 1), test::noise_image(width, height, 2),
                      random_marks(width, 3, generator));
  }
}

TEST(CopyColumns, EqualsThePlainCopyWhateverIsMarked) {
  std::mt19937 generator(4);
  const ClSimpleBitmap source = test::noise_image(701, 9, 1);
  const ClSimpleBitmap target = test::noise_image(701, 9, 2);
  for (const unsigned int one_in : {1U, 2U, 10U, 100U, 500U, 1000000U}) {
    expect_plain_copy(source, target, random_marks(701, one_in, generator));
  }
}

TEST(CopyColumns, MarksMayStandForLaterColumns) {
  std::mt19937 generator(5);
  expect_plain_copy(test::noise_image(301, 9, 1), test::noise_image(301, 9, 2),
                    random_marks(201, 2, generator), 100);
}

TEST(CopyColumns, NothingIsWrittenBehindASmallerTarget) {
  const std::vector<unsigned char> all(100, kColumnMarked);
  expect_plain_copy(test::noise_image(100, 9, 1), test::noise_image(100, 4, 2), all);
  expect_plain_copy(test::noise_image(100, 9, 1), test::noise_image(33, 9, 2), all);
  expect_plain_copy(test::noise_image(100, 9, 1), test::noise_image(10, 1, 2), all);
}

TEST(CopyColumns, AnEmptyTargetStaysEmpty) {
  ClSimpleBitmap target;
  copy_columns(test::noise_image(100, 9, 1), target, 0,
               std::vector<unsigned char>(100, kColumnMarked));
  EXPECT_TRUE(target.Empty());
}

}  // namespace
}  // namespace Osv::lx
