#include "detection/plain_finger_detection.h"

#include <gtest/gtest.h>

#include <array>

#include "detection/images.h"

namespace Osv::lx {
namespace {

using utilities::ClSimpleBitmap;

struct PlainFinger : testing::Test {
  bool detect(ClSimpleBitmap& in) { return plain.Detect(in, out); }

  ClPlainFingerDetection plain{240};
  ClSimpleBitmap out;
};

TEST_F(PlainFinger, AMiddleRowThatIsAllBlackIsNoFingerHoweverDarkTheFrame) {
  ClSimpleBitmap in = test::gray_image(10, 5, 100);
  test::fill_row(in, 2, 0);
  EXPECT_FALSE(detect(in));
}

TEST_F(PlainFinger, OneGrayPixelInABlackMiddleRowIsEnough) {
  ClSimpleBitmap in = test::gray_image(10, 5, 0);
  test::row_of(in, 2)[9] = 1;
  EXPECT_TRUE(detect(in));
}

TEST_F(PlainFinger, AMiddleRowWithMeanExactly240IsNoFinger) {
  ClSimpleBitmap in = test::gray_image(10, 5, 100);
  test::fill_row(in, 2, 240);
  EXPECT_FALSE(detect(in));
}

TEST_F(PlainFinger, AMiddleRowWithMean239Point9IsAFinger) {
  ClSimpleBitmap in = test::gray_image(10, 5, 255);
  test::fill_row(in, 2, 240);
  test::row_of(in, 2)[5] = 239;
  EXPECT_TRUE(detect(in));
}

TEST_F(PlainFinger, OfAnEvenHeightTheLowerMiddleRowIsProbed) {
  ClSimpleBitmap in = test::gray_image(10, 4, 255);
  test::fill_row(in, 2, 100);
  EXPECT_TRUE(detect(in));
  test::fill_row(in, 2, 255);
  test::fill_row(in, 1, 100);
  EXPECT_FALSE(detect(in));
}

TEST_F(PlainFinger, TheFrameIsTheWorkingImageWhateverTheAnswer) {
  ClSimpleBitmap black = test::gray_image(10, 5, 0);
  ClSimpleBitmap bright = test::gray_image(10, 5, 255);
  ClSimpleBitmap finger = test::gray_image(10, 5, 100);
  for (ClSimpleBitmap* const in : {&black, &bright, &finger}) {
    detect(*in);
    EXPECT_TRUE(test::same_block(out, *in));
  }
}

TEST_F(PlainFinger, EveryFrameThatPassesIsDelivered) {
  ClSimpleBitmap in = test::gray_image(10, 5, 100);
  EXPECT_TRUE(detect(in));
  EXPECT_TRUE(detect(in));
}

TEST_F(PlainFinger, AnOddWidthTakesInTheByteBehindTheLastPixelAndNoOther) {
  ClSimpleBitmap in = test::gray_image(5, 1, 239, 255);
  EXPECT_FALSE(detect(in)) << "5 x 239 + 255 is not below 5 x 240";
  in.Pixel()[5] = 0;
  EXPECT_TRUE(detect(in)) << "the two bytes behind it are still 255";
}

TEST_F(PlainFinger, NoFrameIsChanged) {
  for (const int level : {0, 100, 255}) {
    const ClSimpleBitmap before = test::gray_image(9, 5, static_cast<unsigned char>(level));
    ClSimpleBitmap in = before;
    detect(in);
    EXPECT_TRUE(test::same_block(in, before));
  }
}

TEST_F(PlainFinger, ABitmapWithoutRowsIsNoFinger) {
  ClSimpleBitmap empty;
  ClSimpleBitmap flat;
  flat.Create(10, 0, 8, 0);
  EXPECT_FALSE(detect(empty));
  EXPECT_FALSE(detect(flat));
}

TEST_F(PlainFinger, LineDetectGivesTheSumOfTheRow) {
  const std::array<unsigned char, 4> line{1, 2, 3, 4};
  unsigned long sum = 1000;
  EXPECT_TRUE(plain.LineDetect(line.data(), 4, sum));
  EXPECT_EQ(sum, 10U);
}

TEST_F(PlainFinger, OnlyTheLow8BitsOfTheThresholdCount) {
  ClSimpleBitmap in = test::gray_image(10, 5, 2);
  ClPlainFingerDetection two(0x102);
  ClPlainFingerDetection three(0x103);
  EXPECT_FALSE(two.Detect(in, out));
  EXPECT_TRUE(three.Detect(in, out));
}

TEST_F(PlainFinger, ACopyHasTheSameThreshold) {
  ClSimpleBitmap in = test::gray_image(10, 5, 100);
  ClPlainFingerDetection assigned(240);
  const ClPlainFingerDetection low(50);
  ClPlainFingerDetection copy(low);
  assigned = low;
  EXPECT_FALSE(copy.Detect(in, out));
  EXPECT_FALSE(assigned.Detect(in, out));
}

}  // namespace
}  // namespace Osv::lx
