#include "detection/rolled_finger.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <type_traits>
#include <vector>

#include "detection/literal_rolled_finger.h"
#include "detection/rolled_finger_lx1.h"

namespace Osv::lx {
namespace {

using test::LiteralRolledFinger;
using testing::Test;
using utilities::ClSimpleBitmap;
using Area = ClRolledFinger::eDetectArea;
using Profile = std::vector<unsigned char>;

static_assert(std::is_base_of_v<ClImageDetection, ClRolledFinger>);
static_assert(!std::is_base_of_v<ClRolledFinger, ClRolledFingerLX1>, "they are apart");
static_assert(std::is_same_v<decltype(ClRolledFinger::m_cnDelta_Gray), const unsigned long>);
static_assert(ClRolledFinger::m_cnDelta_Gray == 10 && ClRolledFinger::m_cnDetectRowCount == 50);

struct Probe : ClRolledFinger {
  using ClRolledFinger::m_bInitialized;
  using ClRolledFinger::m_bReserved;
  using ClRolledFinger::m_bRolling;
  using ClRolledFinger::m_Image;
  using ClRolledFinger::m_nBackgroundStrip;
  using ClRolledFinger::m_nBackgroundWhole;
  using ClRolledFinger::m_Profile;
};

constexpr unsigned long kWidth = 201;
constexpr unsigned long kHeight = 6;

ClSimpleBitmap frame_of(int level, unsigned long width = kWidth) {
  return test::gray_image(width, kHeight, static_cast<unsigned char>(level));
}

/// A frame of one gray level with the edge at column `edge`: row 0 is black up to there and white
/// from there on.
ClSimpleBitmap frame_with_edge(unsigned long edge, int level = 100, unsigned long width = kWidth) {
  ClSimpleBitmap frame = frame_of(level, width);
  const std::span<unsigned char> row = test::row_of(frame, 0);
  std::fill(row.begin(), row.end(), static_cast<unsigned char>(255));
  std::fill_n(row.begin(), edge, static_cast<unsigned char>(0));
  return frame;
}

/// Columns of a frame of one gray level painted in another.
ClSimpleBitmap striped(int level, unsigned long from, unsigned long to, int paint) {
  ClSimpleBitmap frame = frame_of(level);
  for (unsigned long y = 0; y < kHeight; ++y) {
    const std::span<unsigned char> row = test::row_of(frame, y).subspan(from, to - from);
    std::fill(row.begin(), row.end(), static_cast<unsigned char>(paint));
  }
  return frame;
}

struct RolledFinger : Test {
  /// Shows a frame to a caller whose `out` has the right size.
  bool show(ClSimpleBitmap frame) {
    out = frame_of(1);
    return rolled.Detect(frame, out);
  }
  bool show(int level) { return show(frame_of(level)); }

  /// Takes a background and begins a roll.
  void begin_roll(int background = 250) {
    show(background);
    show(striped(background, 0, 50, 100));
  }

  bool out_is(const ClSimpleBitmap& image) { return pixels_of(out) == pixels_of(image); }

  /// All pixels, without padding.
  static std::vector<unsigned char> pixels_of(ClSimpleBitmap image) {
    std::vector<unsigned char> pixels;
    for (unsigned long y = 0; y < image.Height(); ++y) {
      const std::span<unsigned char> row = test::row_of(image, y);
      pixels.insert(pixels.end(), row.begin(), row.end());
    }
    return pixels;
  }

  Probe rolled;
  ClSimpleBitmap out;
};

// The states.

TEST_F(RolledFinger, ANewOneKnowsNothing) {
  EXPECT_TRUE(rolled.m_bReserved);
  EXPECT_FALSE(rolled.m_bInitialized);
  EXPECT_FALSE(rolled.m_bRolling);
  EXPECT_EQ(rolled.m_nBackgroundStrip, 0U);
  EXPECT_TRUE(rolled.m_Profile.empty());
  EXPECT_TRUE(rolled.m_Image.Empty());
}

TEST_F(RolledFinger, ItsTypeIsRolled) { EXPECT_EQ(rolled.Type(), eCaptureRolled); }

TEST_F(RolledFinger, NewAnyFrameIsTheBackground) {
  for (const int level : {0, 100, 255}) {
    rolled.Uninitialize();
    EXPECT_FALSE(show(level));
    EXPECT_TRUE(rolled.m_bInitialized);
    EXPECT_FALSE(rolled.m_bRolling);
    EXPECT_EQ(rolled.m_nBackgroundStrip, static_cast<unsigned long>(level));
  }
}

TEST_F(RolledFinger, WaitingAStripDarkerByMoreThan10StartsTheRoll) {
  show(250);
  EXPECT_FALSE(show(striped(250, 0, 50, 240)));
  EXPECT_FALSE(rolled.m_bRolling);
  EXPECT_FALSE(show(striped(250, 0, 50, 239)));
  EXPECT_TRUE(rolled.m_bRolling);
}

TEST_F(RolledFinger, WaitingAFingerBesideTheFirst50ColumnsStartsNothing) {
  show(250);
  show(striped(250, 50, kWidth, 0));
  EXPECT_FALSE(rolled.m_bRolling);
}

TEST_F(RolledFinger, RollingGoesOnWhileTheWholeImageIsDarkerByMoreThan10) {
  begin_roll();
  EXPECT_FALSE(show(striped(250, 100, 150, 239)));
  EXPECT_TRUE(rolled.m_bRolling);
  EXPECT_TRUE(show(striped(250, 100, 150, 240)));
}

TEST_F(RolledFinger, RollingAFrameThatIsNotDarkerDeliversAndForgetsTheBackground) {
  begin_roll();
  EXPECT_TRUE(show(250));
  EXPECT_FALSE(rolled.m_bInitialized);
  EXPECT_FALSE(rolled.m_bRolling);
}

TEST_F(RolledFinger, TheFrameAfterADeliveryIsTheNextBackground) {
  begin_roll();
  show(250);
  show(80);
  EXPECT_EQ(rolled.m_nBackgroundStrip, 80U);
  EXPECT_TRUE(out_is(frame_of(80)));
}

TEST_F(RolledFinger, UninitializeClearsTheFlagsAndNothingElse) {
  begin_roll();
  show(frame_with_edge(30));
  rolled.Uninitialize();
  EXPECT_FALSE(rolled.m_bInitialized);
  EXPECT_FALSE(rolled.m_bRolling);
  EXPECT_EQ(rolled.m_nBackgroundStrip, 250U);
  EXPECT_EQ(rolled.m_Profile, Profile(kHeight, 30));
  EXPECT_FALSE(rolled.m_Image.Empty());
}

TEST_F(RolledFinger, ASecondInitializeDoesNothing) {
  rolled.Initialize(frame_of(250));
  rolled.Initialize(frame_of(100));
  EXPECT_EQ(rolled.m_nBackgroundStrip, 250U);
  EXPECT_EQ(rolled.m_nBackgroundWhole, 250 * kWidth / 50);
}

TEST_F(RolledFinger, InitializeSetsTheWholeProfileTo0) {
  rolled.m_Profile = {7, 8, 9};
  rolled.Initialize(frame_of(250));
  EXPECT_EQ(rolled.m_Profile, Profile(kHeight, 0));
}

// The roll.

TEST_F(RolledFinger, MovingRightTakesTheColumnsThatTheEdgePasses) {
  begin_roll();
  show(frame_with_edge(60, 100));
  show(frame_with_edge(90, 50));
  ClSimpleBitmap expected = frame_of(250);
  for (unsigned long y = 0; y < kHeight; ++y) {
    const std::span<unsigned char> row = test::row_of(expected, y);
    std::fill_n(row.begin(), 60, static_cast<unsigned char>(y == 0 ? 0 : 100));
    std::fill_n(row.begin() + 60, 30, static_cast<unsigned char>(y == 0 ? 0 : 50));
  }
  EXPECT_TRUE(out_is(expected));
  EXPECT_EQ(rolled.m_Profile, Profile(kHeight, 90));
}

TEST_F(RolledFinger, RollingBackLeavesTheEdgeAndTheColumnsBehindIt) {
  begin_roll();
  show(frame_with_edge(90, 100));
  const ClSimpleBitmap before = out;
  EXPECT_FALSE(show(frame_with_edge(40, 20)));
  EXPECT_EQ(rolled.m_Profile, Profile(kHeight, 90));
  EXPECT_TRUE(out_is(before));
}

TEST_F(RolledFinger, TheFrameThatStartsARollIsNotMerged) {
  show(250);
  show(frame_with_edge(60, 100));
  EXPECT_TRUE(rolled.m_bRolling);
  EXPECT_TRUE(out_is(frame_of(250)));
}

TEST_F(RolledFinger, AFingerThatLeavesBeforeTheEdgeHasMovedDeliversTheFirstFrame) {
  const ClSimpleBitmap first = striped(250, 70, 80, 240);
  show(first);
  show(striped(250, 0, 50, 100));
  EXPECT_TRUE(show(250));
  EXPECT_TRUE(out_is(first));
}

TEST_F(RolledFinger, TheFinishedImageIsWhatTheEdgeHasLeft) {
  begin_roll();
  show(frame_with_edge(120, 100));
  const ClSimpleBitmap assembled = out;
  EXPECT_TRUE(show(255));
  EXPECT_TRUE(out_is(assembled));
}

TEST_F(RolledFinger, RowsOtherThanRow0HaveNoInfluenceOnTheEdge) {
  begin_roll();
  ClSimpleBitmap frame = frame_with_edge(60, 100);
  for (unsigned long y = 1; y < kHeight; ++y) {
    std::fill_n(test::row_of(frame, y).begin() + 60, 20 * y, static_cast<unsigned char>(0));
  }
  show(frame);
  EXPECT_EQ(rolled.m_Profile, Profile(kHeight, 60));
  EXPECT_EQ(test::row_of(out, 3)[59], 100) << "but they are what is copied";
  EXPECT_EQ(test::row_of(out, 3)[60], 250);
}

TEST_F(RolledFinger, InAFrameOf640ColumnsAnEdgeAt300IsStoredAs44) {
  ClSimpleBitmap background = frame_of(250, 640);
  rolled.Detect(background, out);
  ClSimpleBitmap frame = frame_with_edge(299, 100, 640);  // the mean stays 0 for one column more
  rolled.Detect(frame, out);
  rolled.Detect(frame, out);
  EXPECT_EQ(rolled.LineRand(frame.Pixel(), 0, 640), 300U);
  EXPECT_EQ(rolled.m_Profile, Profile(kHeight, 44));
  EXPECT_EQ(test::row_of(rolled.m_Image, 1)[43], 100);
  EXPECT_EQ(test::row_of(rolled.m_Image, 1)[44], 250);
}

TEST_F(RolledFinger, AnEdgeThatWrapsBelowTheOneBeforeCopiesNothing) {
  rolled.m_bInitialized = rolled.m_bRolling = true;
  rolled.m_nBackgroundWhole = 10000;
  rolled.m_Profile = Profile(kHeight, 200);
  rolled.m_Image = frame_of(250, 640);
  ClSimpleBitmap frame = frame_with_edge(299, 100, 640);
  rolled.Detect(frame, out);
  EXPECT_EQ(rolled.m_Profile, Profile(kHeight, 44));
  EXPECT_EQ(pixels_of(rolled.m_Image), pixels_of(frame_of(250, 640)));
}

// What the caller sees.

TEST_F(RolledFinger, ACallerWithTheRightSizeSeesTheAssembledImageAfterEveryFrame) {
  show(250);
  EXPECT_TRUE(out_is(frame_of(250)));
  show(245);
  EXPECT_TRUE(out_is(frame_of(250))) << "waiting, it is the background";
  show(striped(250, 0, 50, 100));
  EXPECT_TRUE(out_is(frame_of(250)));
  show(frame_with_edge(kWidth - 1, 99));
  EXPECT_EQ(test::row_of(out, 1)[100], 99);
}

TEST_F(RolledFinger, AnEmptyOutStaysEmpty) {
  ClSimpleBitmap frame = frame_of(250);
  rolled.Detect(frame, out);
  EXPECT_TRUE(out.Empty());
}

TEST_F(RolledFinger, AnOutOfAnotherSizeKeepsItAndGetsAsManyBytesAsFit) {
  ClSimpleBitmap frame = frame_of(250);
  ClSimpleBitmap smaller = test::gray_image(8, 2, 7);
  rolled.Detect(frame, smaller);
  EXPECT_TRUE(test::same_block(smaller, test::gray_image(8, 2, 250)));
  ClSimpleBitmap larger = test::gray_image(kWidth + 3, kHeight + 1, 7);
  rolled.Detect(frame, larger);
  EXPECT_EQ(larger.Height(), kHeight + 1);
  EXPECT_EQ(test::row_of(larger, kHeight)[0], 7);
}

// The measure.

TEST_F(RolledFinger, Area0MeasuresTheFirst50Columns) {
  EXPECT_EQ(rolled.Gray_Avarage(striped(0, 0, 50, 30), Area{0}), 30U);
  EXPECT_EQ(rolled.Gray_Avarage(striped(30, 0, 50, 0), Area{0}), 0U);
}

TEST_F(RolledFinger, Area1MeasuresTheLast50Columns) {
  EXPECT_EQ(rolled.Gray_Avarage(striped(0, kWidth - 50, kWidth, 30), Area{1}), 30U);
  EXPECT_EQ(rolled.Gray_Avarage(striped(30, kWidth - 50, kWidth, 0), Area{1}), 0U);
}

TEST_F(RolledFinger, Area2IsDividedBy50ColumnsToo) {
  EXPECT_EQ(rolled.Gray_Avarage(frame_of(200), Area{2}), 200 * kWidth / 50);
}

TEST_F(RolledFinger, AnyOtherAreaSumsNothing) {
  EXPECT_EQ(rolled.Gray_Avarage(frame_of(200), Area{3}), 0U);
  EXPECT_EQ(rolled.Gray_Avarage(frame_of(200), Area{0xFFFFFFFFU}), 0U);
}

TEST_F(RolledFinger, TheMeasureIsCutTowardsZero) {
  ClSimpleBitmap image = frame_of(0);
  test::row_of(image, 0)[0] = 255;
  test::row_of(image, 1)[0] = 50 * kHeight - 1 - 255;
  EXPECT_EQ(rolled.Gray_Avarage(image, Area{0}), 0U);
  test::row_of(image, 1)[0] = 50 * kHeight - 255;
  EXPECT_EQ(rolled.Gray_Avarage(image, Area{0}), 1U);
}

TEST_F(RolledFinger, ANarrowImageCountsWholeAndIsStillDividedBy50) {
  for (const unsigned int area : {0U, 1U, 2U}) {
    EXPECT_EQ(rolled.Gray_Avarage(frame_of(100, 25), Area{area}), 50U) << area;
  }
}

TEST_F(RolledFinger, AnImageWithoutRowsIsBrighterThanAnyOther) {
  show(250);
  EXPECT_GT(rolled.Gray_Avarage(ClSimpleBitmap(), Area{0}), 255U);
  EXPECT_FALSE(rolled.IsFinger(ClSimpleBitmap(), Area{0}));
  EXPECT_FALSE(rolled.IsFinger(ClSimpleBitmap(), Area{2}));
}

TEST_F(RolledFinger, AFallOf10IsNoFingerAnd11Is) {
  show(250);
  EXPECT_FALSE(rolled.IsFinger(striped(250, 0, 50, 240), Area{0}));
  EXPECT_TRUE(rolled.IsFinger(striped(250, 0, 50, 239), Area{0}));
}

TEST_F(RolledFinger, TheWholeImageIsHeldAgainstTheWholeBackground) {
  show(250);
  EXPECT_FALSE(rolled.IsFinger(striped(250, 100, 150, 240), Area{2}));
  EXPECT_TRUE(rolled.IsFinger(striped(250, 100, 150, 239), Area{2}));
}

TEST_F(RolledFinger, TheLastColumnsAreHeldAgainstTheFirstOnesBackground) {
  show(striped(250, 0, 50, 100));
  EXPECT_FALSE(rolled.IsFinger(striped(0, kWidth - 50, kWidth, 90), Area{1}));
  EXPECT_TRUE(rolled.IsFinger(striped(0, kWidth - 50, kWidth, 89), Area{1}));
}

TEST_F(RolledFinger, ABrighterImageIsNoFinger) {
  show(100);
  EXPECT_FALSE(rolled.IsFinger(frame_of(250), Area{0}));
  EXPECT_FALSE(rolled.IsFinger(frame_of(250), Area{2}));
}

// The edge.

TEST_F(RolledFinger, TheMeanOfNoBytesIsTheFirstByte) {
  const Profile line{77, 1};
  EXPECT_EQ(rolled.LineAvarage(line.data(), 0), 77U);
}

TEST_F(RolledFinger, TheMeanOfALineIsCutTowardsZero) {
  const Profile line{10, 11, 11, 0};
  EXPECT_EQ(rolled.LineAvarage(line.data(), 1), 10U);
  EXPECT_EQ(rolled.LineAvarage(line.data(), 3), 10U);
  EXPECT_EQ(rolled.LineAvarage(line.data(), 4), 8U);
}

TEST_F(RolledFinger, TheEdgeIsWhereTheMeanFromTheStartIsLowest) {
  const Profile line{100, 50, 200, 200, 200};
  EXPECT_EQ(rolled.LineRand(line.data(), 0, 5), 2U);
}

TEST_F(RolledFinger, OfEqualMeansTheLaterColumnWins) {
  const Profile line(20, 60);
  EXPECT_EQ(rolled.LineRand(line.data(), 0, 20), 19U);
}

TEST_F(RolledFinger, TheEdgeNeverLiesLeftOfItsStart) {
  const Profile line{0, 0, 255, 255, 255, 255};
  EXPECT_EQ(rolled.LineRand(line.data(), 0, 6), 2U);
  EXPECT_EQ(rolled.LineRand(line.data(), 4, 6), 4U);
}

TEST_F(RolledFinger, AWhiteLineHasAnEdgeToo) {
  const Profile line(9, 255);
  EXPECT_EQ(rolled.LineRand(line.data(), 3, 9), 8U);
}

TEST_F(RolledFinger, AStartAtTheWidthOrBehindItGivesEdge0) {
  const Profile line(20, 60);
  EXPECT_EQ(rolled.LineRand(line.data(), 20, 20), 0U);
  EXPECT_EQ(rolled.LineRand(line.data(), 21, 20), 0U);
  EXPECT_EQ(rolled.LineRand(line.data(), 0, 0), 0U);
}

TEST_F(RolledFinger, AProfileAtTheWidthStartsOverFromTheLeft) {
  Profile next(kHeight, 9);
  rolled.CalculateLineRand(frame_with_edge(60), Profile(kHeight, kWidth), next);
  EXPECT_EQ(next, Profile(kHeight, 0));
  rolled.CalculateLineRand(frame_with_edge(60), Profile(next), next);
  EXPECT_EQ(next, Profile(kHeight, 60));
}

TEST_F(RolledFinger, RowsOfAProfileMayStandApart) {
  const Profile previous{0, 30, 60, 61, 200, 201};
  Profile next(kHeight);
  rolled.CalculateLineRand(frame_with_edge(60), previous, next);
  EXPECT_EQ(next, (Profile{60, 60, 60, 61, 200, 0}));
}

TEST_F(RolledFinger, ALastRowMayStandApartFromAllOthers) {
  const Profile previous{0, 0, 0, 0, 0, 70};
  Profile next(kHeight);
  rolled.CalculateLineRand(frame_with_edge(60), previous, next);
  EXPECT_EQ(next, (Profile{60, 60, 60, 60, 60, 70}));
}

TEST_F(RolledFinger, RowsThatStandApartOnAFrameBeyond256ColumnsEqualThePlainOnes) {
  const Profile previous{0, 30, 200, 255, 1, 254};
  for (const unsigned long edge : {10UL, 150UL, 250UL, 300UL, 600UL}) {
    const ClSimpleBitmap frame = frame_with_edge(edge, 100, 643);
    Profile next(kHeight);
    Profile plain(kHeight);
    rolled.CalculateLineRand(frame, previous, next);
    LiteralRolledFinger::calculate(frame, previous, plain);
    EXPECT_EQ(next, plain) << edge;
  }
}

TEST_F(RolledFinger, ProfilesOfOtherLengthsAreSafe) {
  Profile next(kHeight + 1, 9);
  rolled.CalculateLineRand(frame_with_edge(60), Profile{70}, next);
  EXPECT_EQ(next, (Profile{70, 60, 60, 60, 60, 60, 9}));
  Profile shorter(2);
  rolled.CalculateLineRand(frame_with_edge(60), Profile(kHeight), shorter);
  EXPECT_EQ(shorter, Profile(2, 60));
}

TEST_F(RolledFinger, EdgesEqualThePlainOnesAtEveryWidthUpTo257) {
  std::mt19937 generator(17);
  for (unsigned long width = 1; width <= 257; ++width) {
    Profile line(width);
    const unsigned long spread = 1 + generator() % 256;
    std::generate(line.begin(), line.end(),
                  [&] { return static_cast<unsigned char>(255 - generator() % spread); });
    const unsigned long from = generator() % width;
    ASSERT_EQ(rolled.LineRand(line.data(), from, width),
              LiteralRolledFinger::edge(line.data(), from, width));
    ASSERT_EQ(rolled.LineRand(line.data(), 0, width),
              LiteralRolledFinger::edge(line.data(), 0, width));
  }
}

// The copies.

TEST_F(RolledFinger, ARowIsCopiedFromOneColumnUpToAnother) {
  ClSimpleBitmap target = frame_of(7);
  ClSimpleBitmap expected = target;
  std::fill_n(test::row_of(expected, 2).begin() + 10, 5, static_cast<unsigned char>(99));
  rolled.CopyBitmapRow(frame_of(99), target, 2, 10, 15);
  EXPECT_TRUE(test::same_block(target, expected));
}

TEST_F(RolledFinger, NothingIsCopiedBackwards) {
  ClSimpleBitmap target = frame_of(7);
  rolled.CopyBitmapRow(frame_of(99), target, 2, 15, 15);
  rolled.CopyBitmapRow(frame_of(99), target, 2, 15, 10);
  EXPECT_TRUE(test::same_block(target, frame_of(7)));
}

TEST_F(RolledFinger, ARowIsCopiedWithTheSourcesStride) {
  ClSimpleBitmap target = test::gray_image(8, 4, 7);
  rolled.CopyBitmapRow(test::gray_image(16, 4, 99), target, 1, 0, 4);
  EXPECT_EQ(test::row_of(target, 1)[0], 7);
  EXPECT_EQ(test::row_of(target, 2)[0], 99);
}

TEST_F(RolledFinger, NothingIsCopiedBehindTheEndOfEitherImage) {
  ClSimpleBitmap small = test::gray_image(8, 2, 7, 7);
  rolled.CopyBitmapRow(frame_of(99), small, 0, 14, 30);
  rolled.CopyBitmapRow(frame_of(99), small, 3, 0, 30);
  EXPECT_EQ(test::row_of(small, 1)[5], 7);
  EXPECT_EQ(test::row_of(small, 1)[6], 99);
  ClSimpleBitmap large = frame_of(7);
  rolled.CopyBitmapRow(small, large, 1, 6, 30);
  EXPECT_EQ(test::row_of(large, 0)[15], 99);
  EXPECT_EQ(test::row_of(large, 0)[16], 7);
}

TEST_F(RolledFinger, EachRowIsCopiedBetweenItsOwnEdges) {
  ClSimpleBitmap target = frame_of(7);
  rolled.BitmapProfilCopy(frame_of(99), target, Profile{0, 10, 20}, Profile{5, 5, 21, 100});
  ClSimpleBitmap expected = frame_of(7);
  std::fill_n(test::row_of(expected, 0).begin(), 5, static_cast<unsigned char>(99));
  test::row_of(expected, 2)[20] = 99;
  EXPECT_TRUE(test::same_block(target, expected));
}

// Copy and assignment.

TEST_F(RolledFinger, ACopyTakesTheFlagsAlone) {
  begin_roll();
  rolled.m_bReserved = false;
  const Probe copy(rolled);
  EXPECT_FALSE(copy.m_bReserved);
  EXPECT_TRUE(copy.m_bInitialized);
  EXPECT_TRUE(copy.m_bRolling);
  EXPECT_EQ(copy.m_nBackgroundStrip, 0U);
  EXPECT_TRUE(copy.m_Profile.empty());
  EXPECT_TRUE(copy.m_Image.Empty());
}

TEST_F(RolledFinger, AnAssignmentTakesTwoFlagsAndTheStripAlone) {
  begin_roll();
  rolled.m_bReserved = false;
  Probe other;
  other.m_Profile = {1, 2};
  other = rolled;
  EXPECT_TRUE(other.m_bReserved);
  EXPECT_TRUE(other.m_bInitialized);
  EXPECT_TRUE(other.m_bRolling);
  EXPECT_EQ(other.m_nBackgroundStrip, 250U);
  EXPECT_EQ(other.m_nBackgroundWhole, 0U);
  EXPECT_EQ(other.m_Profile, (Profile{1, 2}));
  EXPECT_TRUE(other.m_Image.Empty());
}

TEST_F(RolledFinger, AnAssignmentToItselfChangesNothing) {
  begin_roll();
  const Probe& same = rolled;
  rolled = same;
  EXPECT_TRUE(rolled.m_bRolling);
  EXPECT_EQ(rolled.m_nBackgroundStrip, 250U);
  EXPECT_EQ(rolled.m_Profile.size(), kHeight);
}

TEST_F(RolledFinger, ACopyMadeInARollIsSafe) {
  begin_roll();
  Probe copy(rolled);
  copy.m_nBackgroundWhole = 10000;
  ClSimpleBitmap frame = frame_with_edge(60);
  out = frame_of(1);
  EXPECT_FALSE(copy.Detect(frame, out));
  EXPECT_FALSE(copy.Detect(frame, out));
  EXPECT_EQ(copy.m_Profile, Profile(kHeight, 60));
  EXPECT_TRUE(out_is(frame_of(1)));
}

// Against the plain version.

/// A dark part that ends anywhere, on a platen, with some noise.
ClSimpleBitmap random_frame(unsigned long width, unsigned long height, std::mt19937& generator) {
  ClSimpleBitmap frame = test::noise_image(width, height, static_cast<unsigned int>(generator()));
  const unsigned long dark = generator() % 4 == 0 ? 0 : generator() % (width + width / 4 + 1);
  const unsigned long level = generator() % 200;
  const unsigned long noise = 1 + generator() % 40;
  for (unsigned long y = 0; y < height; ++y) {
    for (unsigned long x = 0; x < width; ++x) {
      unsigned char& pixel = test::row_of(frame, y)[x];
      pixel = static_cast<unsigned char>(x < dark ? level + pixel % noise : 250UL + pixel % 3UL);
    }
  }
  return frame;
}

struct AgainstThePlainRoll : Test {
  void show(ClSimpleBitmap frame) {
    const ClSimpleBitmap before = frame;
    ClSimpleBitmap out = test::gray_image(frame.Width(), frame.Height(), 1);
    ClSimpleBitmap expected = out;
    const bool finished = rolled.Detect(frame, out);
    ASSERT_EQ(finished, plain.detect(frame, expected));
    ASSERT_TRUE(test::same_block(out, expected));
    ASSERT_TRUE(test::same_block(frame, before)) << "the frame was changed";
    ASSERT_EQ(rolled.m_Profile, plain.profile);
    ASSERT_EQ(rolled.m_nBackgroundStrip, plain.strip);
    ASSERT_EQ(rolled.m_nBackgroundWhole, plain.whole);
    ASSERT_EQ(rolled.m_bInitialized, plain.initialized);
    ASSERT_EQ(rolled.m_bRolling, plain.rolling);
    deliveries += finished ? 1 : 0;
    copies += finished || rolled.m_Profile == Profile(frame.Height(), 0) ? 0 : 1;
  }

  Probe rolled;
  LiteralRolledFinger plain;
  std::mt19937 generator{23};
  int deliveries = 0;
  int copies = 0;
};

TEST_F(AgainstThePlainRoll, RandomRollsOfOddSizesAgree) {
  for (int roll = 0; roll < 60; ++roll) {
    const unsigned long width = 1 + generator() % 250;
    const unsigned long height = 1 + generator() % 30;
    for (int frame = 0; frame < 20; ++frame) {
      ASSERT_NO_FATAL_FAILURE(show(random_frame(width, height, generator))) << roll;
    }
  }
  EXPECT_GT(deliveries, 30);
  EXPECT_GT(copies, 200);
}

TEST_F(AgainstThePlainRoll, RollsWhoseEdgeWrapsAgree) {
  for (const unsigned long width : {257UL, 401UL, 643UL}) {
    for (int frame = 0; frame < 40; ++frame) {
      ASSERT_NO_FATAL_FAILURE(show(random_frame(width, 7, generator))) << width;
    }
  }
  EXPECT_GT(copies, 20);
}

TEST_F(AgainstThePlainRoll, FramesWhoseSizeChangesInARollAgree) {
  for (int frame = 0; frame < 2000; ++frame) {
    const unsigned long width = 1 + generator() % 130;
    const unsigned long height = 1 + generator() % 12;
    ASSERT_NO_FATAL_FAILURE(show(random_frame(width, height, generator))) << frame;
  }
  EXPECT_GT(deliveries, 30);
}

}  // namespace
}  // namespace Osv::lx
