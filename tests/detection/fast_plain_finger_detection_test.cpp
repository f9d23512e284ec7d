#include "detection/fast_plain_finger_detection.h"

#include <gtest/gtest.h>

#include "detection/images.h"

namespace Osv::lx {
namespace {

using utilities::ClSimpleBitmap;

constexpr unsigned long kPixels = 10UL * 10;

struct Probe : ClFastPlainFingerDetection {
  using ClFastPlainFingerDetection::m_bFinger;
  using ClFastPlainFingerDetection::m_bInitialized;
  using ClFastPlainFingerDetection::m_Frame;
  using ClFastPlainFingerDetection::m_nBackgroundSum;
  using ClFastPlainFingerDetection::m_nFrames;
  using ClFastPlainFingerDetection::m_nLowestSum;
};

struct FastPlainFinger : testing::Test {
  /// Shows a frame of one gray level.
  bool show(unsigned char level) {
    ClSimpleBitmap in = test::gray_image(10, 10, level);
    return fast.Detect(in, out);
  }
  unsigned char level_of_out() const { return *out.Pixel(); }

  Probe fast;
  ClSimpleBitmap out;
};

TEST_F(FastPlainFinger, ABlackFirstFrameLeavesTheBackgroundToTheNext) {
  show(0);
  EXPECT_LE(fast.m_nBackgroundSum, 0);
  show(250);
  EXPECT_EQ(fast.m_nBackgroundSum, static_cast<long>(250 * kPixels));
}

TEST_F(FastPlainFinger, ABlackFirstFrameFixesTheLowestSumSoThatNoFingerIsEverDelivered) {
  show(0);
  show(250);
  EXPECT_EQ(fast.m_nLowestSum, 0U);
  EXPECT_FALSE(show(100));
  EXPECT_FALSE(show(250));
  EXPECT_EQ(fast.m_nFrames, 0);
}

TEST_F(FastPlainFinger, TheBackgroundIsTakenOnce) {
  show(250);
  show(255);
  EXPECT_EQ(fast.m_nBackgroundSum, static_cast<long>(250 * kPixels));
}

TEST_F(FastPlainFinger, ABackgroundWithASumOf1IsOne) {
  ClSimpleBitmap frame = test::gray_image(10, 10, 0);
  *frame.Pixel() = 1;
  fast.Detect(frame, out);
  show(250);
  EXPECT_EQ(fast.m_nBackgroundSum, 1);
}

TEST_F(FastPlainFinger, TheFirstFrameIsTheFirstKeptFrame) {
  show(250);
  EXPECT_TRUE(fast.m_bInitialized);
  EXPECT_EQ(fast.m_nLowestSum, 250 * kPixels);
  EXPECT_EQ(*fast.m_Frame.Pixel(), 250);
}

TEST_F(FastPlainFinger, AMeanOf242IsNoFingerAnd241Is) {
  EXPECT_FALSE(fast.IsFinger(test::gray_image(10, 10, 242)));
  EXPECT_TRUE(fast.IsFinger(test::gray_image(10, 10, 241)));
}

TEST_F(FastPlainFinger, ABitmapWithoutRowsIsNoFinger) {
  ClSimpleBitmap flat;
  flat.Create(10, 0, 8, 0);
  EXPECT_FALSE(fast.IsFinger(flat));
  EXPECT_FALSE(fast.IsFinger(ClSimpleBitmap()));
}

TEST_F(FastPlainFinger, AFrameDarkerThanTheBackgroundWithMean242IsNoFinger) {
  show(255);
  EXPECT_FALSE(show(242));
  EXPECT_EQ(fast.m_nFrames, 0);
}

TEST_F(FastPlainFinger, ALiftedFingerDeliversItsOneImprovingFrameAtTheFirstBrightFrame) {
  show(250);
  EXPECT_FALSE(show(100));
  EXPECT_TRUE(show(250));
  EXPECT_EQ(level_of_out(), 100);
}

TEST_F(FastPlainFinger, BrightFramesAfterADeliveryAreNotFinishedAndPassThrough) {
  show(250);
  show(100);
  show(250);
  EXPECT_FALSE(show(251));
  EXPECT_EQ(level_of_out(), 251);
}

TEST_F(FastPlainFinger, TheDarkestFrameIsDelivered) {
  show(250);
  for (const int level : {150, 90, 120, 200}) {
    show(static_cast<unsigned char>(level));
  }
  EXPECT_TRUE(show(250));
  EXPECT_EQ(level_of_out(), 90);
}

TEST_F(FastPlainFinger, OfEquallyDarkFramesTheEarliestStays) {
  show(250);
  ClSimpleBitmap early = test::gray_image(10, 10, 100);
  ClSimpleBitmap late = early;
  test::row_of(early, 0)[0] = 99;
  test::row_of(early, 0)[1] = 101;
  fast.Detect(early, out);
  fast.Detect(late, out);
  EXPECT_TRUE(test::same_block(fast.m_Frame, early));
  EXPECT_EQ(fast.m_nFrames, 1);
}

TEST_F(FastPlainFinger, ASecondFingerDeliversItsOwnDarkestFrame) {
  show(250);
  show(50);
  show(250);
  show(200);
  EXPECT_TRUE(show(250));
  EXPECT_EQ(level_of_out(), 200);
}

TEST_F(FastPlainFinger, AFingerThatWasNeverDarkerThanTheBackgroundIsNotDelivered) {
  show(100);
  for (int frame = 0; frame < 20; ++frame) {
    EXPECT_FALSE(show(150));
  }
  EXPECT_FALSE(show(250));
  EXPECT_EQ(level_of_out(), 250);
}

TEST_F(FastPlainFinger, WhileAFingerLiesTheLiveFrameIsTheWorkingImage) {
  show(250);
  show(100);
  EXPECT_FALSE(show(120));
  EXPECT_EQ(level_of_out(), 120);
}

TEST_F(FastPlainFinger, NoFrameIsChangedWhateverBecomesOfIt) {
  const ClSimpleBitmap bright = test::gray_image(10, 10, 250);
  const ClSimpleBitmap finger = test::noise_image(10, 10, 3);
  for (const ClSimpleBitmap* const frame : {&bright, &finger, &finger, &bright, &bright}) {
    ClSimpleBitmap in = *frame;
    fast.Detect(in, out);
    EXPECT_TRUE(test::same_block(in, *frame));
  }
}

TEST_F(FastPlainFinger, ResetKeepsTheFrameAndTheBackground) {
  show(250);
  show(100);
  fast.m_bFinger = true;
  fast.Reset();
  EXPECT_FALSE(fast.m_bFinger);
  EXPECT_TRUE(fast.m_bInitialized);
  EXPECT_EQ(fast.m_nFrames, 0);
  EXPECT_EQ(fast.m_nLowestSum, 250 * kPixels);
  EXPECT_EQ(*fast.m_Frame.Pixel(), 100);
}

TEST_F(FastPlainFinger, ACopyKnowsTheBackgroundButNotTheKeptFrame) {
  show(250);
  show(100);
  Probe copy(fast);
  EXPECT_EQ(copy.m_nBackgroundSum, fast.m_nBackgroundSum);
  EXPECT_TRUE(copy.m_bInitialized);
  EXPECT_EQ(copy.m_nFrames, 1);
  EXPECT_TRUE(copy.m_Frame.Empty());
}

TEST_F(FastPlainFinger, ACopyHasTheFingerFlag) {
  for (const bool finger : {true, false}) {
    fast.m_bFinger = finger;
    EXPECT_EQ(Probe(fast).m_bFinger, finger);
  }
}

TEST_F(FastPlainFinger, ANewStrategyKnowsNoBackground) {
  EXPECT_EQ(fast.m_nBackgroundSum, -1);
  EXPECT_FALSE(fast.m_bInitialized);
}

}  // namespace
}  // namespace Osv::lx
