#include "detection/rolled_finger_lx1.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <type_traits>

#include "detection/literal_rolled_finger_lx1.h"

namespace Osv::lx {
namespace {

using utilities::ClSimpleBitmap;

static_assert(std::is_base_of_v<ClImageDetection, ClRolledFingerLX1>);

struct Probe : ClRolledFingerLX1 {
  using ClRolledFingerLX1::m_bInitialized;
  using ClRolledFingerLX1::m_bRolling;
  using ClRolledFingerLX1::m_Image;
  using ClRolledFingerLX1::m_Minima;
  using ClRolledFingerLX1::m_nBackgroundGray;
  using ClRolledFingerLX1::m_nLowerLimit;
  using ClRolledFingerLX1::m_nReserved;
  using ClRolledFingerLX1::m_nReset;
};

constexpr unsigned long kWidth = 13;
constexpr unsigned long kHeight = 10;

/// A frame of one gray level.
ClSimpleBitmap frame_of(int level) {
  return test::gray_image(kWidth, kHeight, static_cast<unsigned char>(level));
}

void paint_column(ClSimpleBitmap& image, unsigned long column, int level) {
  for (unsigned long y = 0; y < image.Height(); ++y) {
    test::row_of(image, y)[column] = static_cast<unsigned char>(level);
  }
}

struct RolledFingerLX1 : testing::Test {
  bool show(ClSimpleBitmap frame) {
    out.Clear();
    return lx1.Detect(frame, out);
  }
  bool show(int level) { return show(frame_of(level)); }

  /// Takes a background and begins a roll.
  void begin_roll(int background = 250, int finger = 150) {
    show(background);
    show(finger);
  }

  bool out_is(const ClSimpleBitmap& image) const { return test::same_block(out, image); }
  bool out_is(int level) const { return out_is(frame_of(level)); }

  Probe lx1;
  ClSimpleBitmap out;
};

// The states.

TEST_F(RolledFingerLX1, ANewOneHasNoBackground) {
  EXPECT_EQ(lx1.m_nReset, 255U);
  EXPECT_EQ(lx1.m_nReserved, 5U);
  EXPECT_FALSE(lx1.m_bInitialized);
  EXPECT_FALSE(lx1.m_bRolling);
  EXPECT_EQ(lx1.m_nLowerLimit, 255U);
  EXPECT_EQ(lx1.m_nBackgroundGray, 255U);
  EXPECT_TRUE(lx1.m_Minima.empty());
  EXPECT_TRUE(lx1.m_Image.Empty());
}

TEST_F(RolledFingerLX1, ItsTypeIsRolled) { EXPECT_EQ(lx1.Type(), eCaptureRolled); }

TEST_F(RolledFingerLX1, WithoutABackgroundADarkFramePassesThrough) {
  EXPECT_FALSE(show(100));
  EXPECT_TRUE(out_is(100));
  EXPECT_FALSE(lx1.m_bInitialized);
  EXPECT_FALSE(lx1.m_bRolling);
}

TEST_F(RolledFingerLX1, WithoutABackgroundABrightFrameBecomesIt) {
  EXPECT_FALSE(show(250));
  EXPECT_TRUE(out_is(250));
  EXPECT_TRUE(lx1.m_bInitialized);
  EXPECT_FALSE(lx1.m_bRolling);
}

TEST_F(RolledFingerLX1, ReadyAFrameWithoutAFingerPassesThrough) {
  show(250);
  EXPECT_FALSE(show(240));
  EXPECT_TRUE(out_is(240));
  EXPECT_TRUE(lx1.m_bInitialized);
  EXPECT_FALSE(lx1.m_bRolling);
}

TEST_F(RolledFingerLX1, ReadyAFrameWithAFingerStartsTheRollAndPassesThrough) {
  show(250);
  EXPECT_FALSE(show(150));
  EXPECT_TRUE(out_is(150));
  EXPECT_TRUE(lx1.m_bRolling);
}

TEST_F(RolledFingerLX1, RollingAFrameWithAFingerIsMergedAndTheCompositeShown) {
  begin_roll();
  show(120);
  EXPECT_FALSE(show(130));
  EXPECT_TRUE(out_is(120));
  EXPECT_TRUE(lx1.m_bRolling);
}

TEST_F(RolledFingerLX1, RollingAFrameWithoutAFingerDeliversTheCompositeAndForgetsTheBackground) {
  begin_roll();
  show(120);
  EXPECT_TRUE(show(250));
  EXPECT_TRUE(out_is(120));
  EXPECT_FALSE(lx1.m_bInitialized);
  EXPECT_FALSE(lx1.m_bRolling);
}

TEST_F(RolledFingerLX1, TheFrameThatDeliversIsNotTakenForTheNextBackground) {
  begin_roll();
  show(250);
  EXPECT_EQ(lx1.m_nBackgroundGray, 250U);
  show(255);
  EXPECT_EQ(lx1.m_nBackgroundGray, 255U);
}

// The background.

TEST_F(RolledFingerLX1, AFirstFrameWithMean220TakesNoBackgroundAnd221Does) {
  show(220);
  EXPECT_FALSE(lx1.m_bInitialized);
  show(221);
  EXPECT_TRUE(lx1.m_bInitialized);
}

TEST_F(RolledFingerLX1, AMeanJustBelow221TakesNoBackground) {
  ClSimpleBitmap frame = frame_of(221);
  test::row_of(frame, 3)[3] = 220;
  show(frame);
  EXPECT_FALSE(lx1.m_bInitialized);
}

TEST_F(RolledFingerLX1, TheBackgroundGrayIsThatOfTheLatestFrameThatWasLookedAt) {
  show(100);
  EXPECT_EQ(lx1.m_nBackgroundGray, 100U);
  show(230);
  show(250);
  EXPECT_EQ(lx1.m_nBackgroundGray, 230U);
}

TEST_F(RolledFingerLX1, AFingerThatLiesOnThePlatenAlreadyStartsNoRoll) {
  for (const int level : {200, 120, 90, 219, 50}) {
    EXPECT_FALSE(show(level));
    EXPECT_TRUE(out_is(level));
    EXPECT_FALSE(lx1.m_bRolling);
  }
  begin_roll();
  EXPECT_TRUE(lx1.m_bRolling);
}

TEST_F(RolledFingerLX1, TheMinimaAreTheBackgroundsColumnSums) {
  ClSimpleBitmap frame = frame_of(250);
  paint_column(frame, 4, 240);
  show(frame);
  ASSERT_EQ(lx1.m_Minima.size(), kWidth);
  EXPECT_EQ(lx1.m_Minima[3], 250 * kHeight);
  EXPECT_EQ(lx1.m_Minima[4], 240 * kHeight);
}

TEST_F(RolledFingerLX1, TheLowerLimitIsTheSmallestColumnSumLess5PercentCut) {
  ClSimpleBitmap frame = frame_of(250);
  paint_column(frame, 12, 239);
  show(frame);
  EXPECT_EQ(lx1.m_nLowerLimit, 2390U - 119U);
}

TEST_F(RolledFingerLX1, TheLowerLimitStartsAt255TimesTheWidth) {
  show(test::gray_image(5, 10, 250));
  EXPECT_EQ(lx1.m_nLowerLimit, 1275U - 63U) << "below the column sums of 2500";
}

TEST_F(RolledFingerLX1, TheCompositeStartsAsTheBackground) {
  const ClSimpleBitmap background = test::noise_image(kWidth, kHeight, 1);
  show(background);
  EXPECT_TRUE(lx1.m_Image.Empty()) << "noise is too dark";
  show(250);
  EXPECT_TRUE(test::same_block(lx1.m_Image, frame_of(250)));
}

TEST_F(RolledFingerLX1, ASecondInitializeDoesNothing) {
  lx1.Initialize(frame_of(250));
  lx1.Initialize(frame_of(230));
  EXPECT_EQ(lx1.m_nBackgroundGray, 250U);
  EXPECT_EQ(lx1.m_Minima[0], 2500U);
}

// The finger.

TEST_F(RolledFingerLX1, ADifferenceOf19IsNoFingerAnd20Is) {
  show(250);
  show(231);
  EXPECT_FALSE(lx1.m_bRolling);
  show(230);
  EXPECT_TRUE(lx1.m_bRolling);
}

TEST_F(RolledFingerLX1, ARollEndsAtADifferenceOf19) {
  begin_roll();
  EXPECT_FALSE(show(230));
  EXPECT_TRUE(show(231));
}

TEST_F(RolledFingerLX1, TheMeanOfARollingFrameLeavesThePaddingOut) {
  begin_roll();
  EXPECT_FALSE(show(test::gray_image(kWidth, kHeight, 230, 255)));
  EXPECT_TRUE(show(test::gray_image(kWidth, kHeight, 231, 0)));
}

TEST_F(RolledFingerLX1, AFingerInOneFrameOnlyDeliversTheBackground) {
  begin_roll();
  EXPECT_TRUE(show(250));
  EXPECT_TRUE(out_is(250));
}

// The columns.

TEST_F(RolledFingerLX1, OnlyTheColumnsThatGotDarkerAreTaken) {
  begin_roll();
  ClSimpleBitmap frame = frame_of(255);
  ClSimpleBitmap expected = frame_of(250);
  for (unsigned long column = 2; column < 9; ++column) {
    paint_column(frame, column, 10);
    paint_column(expected, column, 10);
  }
  EXPECT_FALSE(show(frame));
  EXPECT_TRUE(out_is(expected));
  EXPECT_EQ(lx1.m_Minima[1], 2500U);
  EXPECT_EQ(lx1.m_Minima[2], 100U);
}

TEST_F(RolledFingerLX1, AColumnWhoseSumEqualsItsMinimumIsNotCopied) {
  begin_roll();
  ClSimpleBitmap early = frame_of(100);
  show(early);
  ClSimpleBitmap late = early;
  test::row_of(late, 0)[5] = 99;
  test::row_of(late, 1)[5] = 101;
  show(late);
  EXPECT_TRUE(out_is(early));
}

TEST_F(RolledFingerLX1, AColumnThatIsDarkerByOneIsCopied) {
  begin_roll();
  show(100);
  ClSimpleBitmap late = frame_of(100);
  test::row_of(late, 0)[12] = 99;
  show(late);
  EXPECT_TRUE(out_is(late));
}

TEST_F(RolledFingerLX1, TheFrameThatStartsARollIsNotMerged) {
  begin_roll(250, 50);
  show(150);
  EXPECT_TRUE(out_is(150));
}

TEST_F(RolledFingerLX1, TheFrameThatEndsARollIsNotMerged) {
  begin_roll();
  show(150);
  ClSimpleBitmap last = frame_of(255);
  paint_column(last, 0, 100);
  EXPECT_TRUE(show(last));
  EXPECT_TRUE(out_is(150));
}

// After a delivery.

TEST_F(RolledFingerLX1, ResetKeepsMinimaAndComposite) {
  begin_roll();
  show(100);
  lx1.Reset();
  EXPECT_FALSE(lx1.m_bInitialized);
  EXPECT_FALSE(lx1.m_bRolling);
  EXPECT_EQ(lx1.m_nLowerLimit, 255U);
  EXPECT_EQ(lx1.m_Minima[0], 1000U);
  EXPECT_TRUE(test::same_block(lx1.m_Image, frame_of(100)));
}

TEST_F(RolledFingerLX1, ResetTakesTheLowerLimitFromItsMember) {
  lx1.m_nReset = 17;
  lx1.Reset();
  EXPECT_EQ(lx1.m_nLowerLimit, 17U);
}

TEST_F(RolledFingerLX1, AfterADeliveryNoColumnOfTheEarlierFingerSurvives) {
  begin_roll();
  show(20);
  show(250);
  begin_roll(240, 150);
  show(160);
  EXPECT_TRUE(show(240));
  EXPECT_TRUE(out_is(160));
}

TEST_F(RolledFingerLX1, AfterADeliveryFramesPassThroughWhileThePlatenStaysDark) {
  begin_roll(240);
  EXPECT_TRUE(show(221));
  for (const int level : {220, 100, 210}) {
    EXPECT_FALSE(show(level));
    EXPECT_TRUE(out_is(level));
    EXPECT_FALSE(lx1.m_bInitialized);
  }
}

// Copies.

TEST_F(RolledFingerLX1, ACopyTakesFlagsAndLimitsButNeitherMinimaNorComposite) {
  begin_roll(240);
  lx1.m_nReset = 17;
  Probe copy(lx1);
  EXPECT_EQ(copy.m_nReset, 255U);
  EXPECT_EQ(copy.m_nReserved, 1U);
  EXPECT_TRUE(copy.m_bInitialized);
  EXPECT_TRUE(copy.m_bRolling);
  EXPECT_EQ(copy.m_nLowerLimit, lx1.m_nLowerLimit);
  EXPECT_EQ(copy.m_nBackgroundGray, 240U);
  EXPECT_TRUE(copy.m_Minima.empty());
  EXPECT_TRUE(copy.m_Image.Empty());
}

TEST_F(RolledFingerLX1, AClonesRollHasNoComposite) {
  begin_roll();
  const std::unique_ptr<ClRolledFingerLX1> clone(lx1.clone());
  ClSimpleBitmap frame = frame_of(100);
  EXPECT_FALSE(clone->Detect(frame, out));
  EXPECT_TRUE(out.Empty());
  frame = frame_of(250);
  EXPECT_TRUE(clone->Detect(frame, out));
  EXPECT_TRUE(out.Empty());
}

TEST_F(RolledFingerLX1, ACloneGoesItsOwnWay) {
  show(250);
  const std::unique_ptr<ClRolledFingerLX1> clone(lx1.clone());
  ClSimpleBitmap finger = frame_of(100);
  clone->Detect(finger, out);
  EXPECT_FALSE(lx1.m_bRolling);
}

// The operations by themselves.

TEST_F(RolledFingerLX1, TheColumnSumIsThatOfAllRows) {
  ClSimpleBitmap image = frame_of(0);
  paint_column(image, 12, 200);
  test::row_of(image, 9)[12] = 255;
  EXPECT_EQ(lx1.ColumnSum(image, 12), 9U * 200 + 255);
  EXPECT_EQ(lx1.ColumnSum(image, 11), 0U);
}

TEST_F(RolledFingerLX1, TheColumnSumOfNoRowsIs0) {
  EXPECT_EQ(lx1.ColumnSum(test::gray_image(10, 0, 0), 3), 0U);
  EXPECT_EQ(lx1.ColumnSum(ClSimpleBitmap(), 0), 0U);
}

TEST_F(RolledFingerLX1, TheColumnSumOfAColumnThatIsNotThereIs0) {
  EXPECT_EQ(lx1.ColumnSum(frame_of(200), kWidth), 0U);
}

TEST_F(RolledFingerLX1, OneColumnIsCopiedInAllRows) {
  ClSimpleBitmap target = frame_of(7);
  ClSimpleBitmap expected = target;
  paint_column(expected, 12, 99);
  lx1.CpyColumn(frame_of(99), target, 12);
  EXPECT_TRUE(test::same_block(target, expected));
}

TEST_F(RolledFingerLX1, AColumnIsCopiedWithTheSourcesStride) {
  ClSimpleBitmap target = test::gray_image(8, 4, 7, 7);
  lx1.CpyColumn(test::gray_image(16, 4, 99), target, 3);
  EXPECT_EQ(test::row_of(target, 0)[3], 99);
  EXPECT_EQ(test::row_of(target, 1)[3], 7);
  EXPECT_EQ(test::row_of(target, 2)[3], 99);
}

TEST_F(RolledFingerLX1, AColumnThatIsNotThereIsNotCopied) {
  ClSimpleBitmap target = frame_of(7);
  lx1.CpyColumn(frame_of(99), target, kWidth);
  EXPECT_TRUE(test::same_block(target, frame_of(7)));
}

TEST_F(RolledFingerLX1, AnEmptyFrameTakenForTheBackgroundStartsARollWithoutAComposite) {
  EXPECT_FALSE(show(ClSimpleBitmap()));
  EXPECT_TRUE(out.Empty());
  EXPECT_FALSE(show(100)) << "this frame starts the roll";
  EXPECT_TRUE(show(ClSimpleBitmap()));
  EXPECT_TRUE(out.Empty());
}

// Against the plain version.

/// An even gray with some noise and some dark columns, as a finger somewhere on the platen.
ClSimpleBitmap random_frame(unsigned long width, unsigned long height, std::mt19937& generator) {
  ClSimpleBitmap frame = test::noise_image(width, height, static_cast<unsigned int>(generator()));
  const unsigned long level = generator() % 3 == 0 ? 246 : generator() % 246;
  const unsigned long from = generator() % width;
  const unsigned long to = level == 246 ? from : from + generator() % (2 * width);
  for (unsigned long y = 0; y < height; ++y) {
    for (unsigned long x = 0; x < width; ++x) {
      unsigned char& pixel = test::row_of(frame, y)[x];
      pixel = static_cast<unsigned char>((x >= from && x < to ? level : 246UL) + pixel % 9UL);
    }
  }
  return frame;
}

struct AgainstThePlainVersion : testing::Test {
  void show(ClSimpleBitmap frame) {
    const ClSimpleBitmap before = frame;
    ClSimpleBitmap out;
    ClSimpleBitmap expected;
    const bool finished = lx1.Detect(frame, out);
    ASSERT_EQ(finished, plain.detect(frame, expected));
    ASSERT_TRUE(test::same_block(out, expected));
    ASSERT_TRUE(test::same_block(frame, before)) << "the frame was changed";
    ASSERT_EQ(lx1.m_Minima, plain.minima);
    ASSERT_EQ(lx1.m_nLowerLimit, plain.limit);
    ASSERT_EQ(lx1.m_nBackgroundGray, plain.gray);
    ASSERT_EQ(lx1.m_bInitialized, plain.initialized);
    ASSERT_EQ(lx1.m_bRolling, plain.rolling);
    deliveries += finished ? 1 : 0;
  }

  Probe lx1;
  test::LiteralRolledFingerLX1 plain;
  std::mt19937 generator{11};
  int deliveries = 0;
};

TEST_F(AgainstThePlainVersion, RandomRollsOfOddSizesAgree) {
  for (int roll = 0; roll < 60; ++roll) {
    const unsigned long width = 1 + generator() % 150;
    const unsigned long height = 1 + generator() % 40;
    for (int frame = 0; frame < 20; ++frame) {
      ASSERT_NO_FATAL_FAILURE(show(random_frame(width, height, generator))) << roll;
    }
  }
  EXPECT_GT(deliveries, 50);
}

TEST_F(AgainstThePlainVersion, RandomRollsOfLargeFramesAgree) {
  for (const unsigned long width : {641UL, 2051UL}) {
    for (int frame = 0; frame < 12; ++frame) {
      ASSERT_NO_FATAL_FAILURE(show(random_frame(width, 259, generator))) << width;
    }
  }
  EXPECT_GT(deliveries, 0);
}

TEST_F(AgainstThePlainVersion, FramesWhoseSizeChangesInARollAgree) {
  for (int frame = 0; frame < 2000; ++frame) {
    const unsigned long width = 1 + generator() % 90;
    const unsigned long height = 1 + generator() % 12;
    ASSERT_NO_FATAL_FAILURE(show(random_frame(width, height, generator))) << frame;
  }
  EXPECT_GT(deliveries, 100);
}

}  // namespace
}  // namespace Osv::lx
