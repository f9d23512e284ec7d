// A print that is rolled over the platen, and what the roll makes of it.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "detection/images.h"
#include "detection/rolled_finger_lx1.h"

namespace Osv::lx {
namespace {

using utilities::ClSimpleBitmap;

constexpr int kWidth = 241;
constexpr int kHeight = 157;
constexpr int kPlaten = 250;
constexpr int kFull = 256;    // the pressure that shows the print as it is
constexpr int kPlateau = 40;  // columns beside the middle of the contact with full pressure
constexpr int kFade = 12;     // columns from there to no contact
constexpr int kStep = 5;      // columns from frame to frame
constexpr int kBeside = 60;   // how far beside the platen a roll begins and ends
constexpr int kEnd = 300;     // where no column of the platen is touched any more
constexpr int kTurn = 200;    // where a roll turns back, with full pressure on the last column
constexpr int kNoDifference = -1;

static_assert(kTurn + kPlateau == kWidth - 1 && (kTurn + kBeside) % kStep == 0);

/// Curved ridges about 9 pixels apart.
ClSimpleBitmap make_print() {
  ClSimpleBitmap print = test::gray_image(kWidth, kHeight, 0);
  for (unsigned long y = 0; y < kHeight; ++y) {
    for (unsigned long x = 0; x < kWidth; ++x) {
      const double distance =
          std::hypot(static_cast<double>(x) - 118, static_cast<double>(y) - 170);
      const double ridge =
          120 + 95 * std::sin(distance * 0.7) + 0.02 * static_cast<double>(x * y % 97);
      test::row_of(print, y)[x] = static_cast<unsigned char>(ridge);
    }
  }
  return print;
}

/// The pressure on a column while the contact's middle is at `middle`, out of `kFull`.
int pressure_on(int column, int middle, int strength) {
  const int beyond = std::abs(column - middle) - kPlateau;
  return strength * std::clamp(kFade - beyond, 0, kFade) / kFade;
}

/// The frame while the contact's middle is at `middle`: less pressure is nearer to the platen.
ClSimpleBitmap contact_of(ClSimpleBitmap& print, int middle, int strength) {
  ClSimpleBitmap frame = test::gray_image(kWidth, kHeight, kPlaten);
  for (unsigned long y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const auto column = static_cast<unsigned long>(x);
      const int darker = kPlaten - test::row_of(print, y)[column];
      test::row_of(frame, y)[column] =
          static_cast<unsigned char>(kPlaten - darker * pressure_on(x, middle, strength) / kFull);
    }
  }
  return frame;
}

/// The first column in which two images differ.
int first_difference(ClSimpleBitmap& a, ClSimpleBitmap& b, int from = 0) {
  for (int x = from; x < kWidth; ++x) {
    for (unsigned long y = 0; y < kHeight; ++y) {
      if (test::row_of(a, y)[static_cast<unsigned long>(x)] !=
          test::row_of(b, y)[static_cast<unsigned long>(x)]) {
        return x;
      }
    }
  }
  return kNoDifference;
}

struct RolledPrint : testing::Test {
  RolledPrint() { show(platen); }

  void show(const ClSimpleBitmap& frame) {
    ClSimpleBitmap in = frame;
    out.Clear();
    finished = lx1.Detect(in, out);
  }

  /// Rolls from one place to another, both included, or until the roll is finished.
  void roll(int from, int to, int strength = kFull) {
    const int step = from < to ? kStep : -kStep;
    for (int middle = from; !finished && middle != to + step; middle += step) {
      show(contact_of(print, middle, strength));
    }
  }
  void roll_to_the_right() { roll(-kBeside, kEnd); }
  void roll_to_the_left() { roll(kEnd, -kBeside); }

  ClSimpleBitmap print = make_print();
  ClSimpleBitmap platen = test::gray_image(kWidth, kHeight, kPlaten);
  ClRolledFingerLX1 lx1;
  ClSimpleBitmap out;
  bool finished = false;
};

TEST_F(RolledPrint, FromLeftToRightIsTheWholePrintInEveryColumn) {
  roll_to_the_right();
  EXPECT_TRUE(finished) << "it leaves the platen at the right";
  EXPECT_EQ(first_difference(out, print), kNoDifference);
}

TEST_F(RolledPrint, FromRightToLeftIsTheWholePrintToo) {
  roll_to_the_left();
  EXPECT_TRUE(finished);
  EXPECT_EQ(first_difference(out, print), kNoDifference);
}

TEST_F(RolledPrint, ThereAndBackIsTheWholePrint) {
  roll(-kBeside, kTurn);
  EXPECT_FALSE(finished);
  roll(kTurn, -kBeside);
  EXPECT_TRUE(finished);
  EXPECT_EQ(first_difference(out, print), kNoDifference);
}

TEST_F(RolledPrint, LessPressureOnTheWayBackChangesNothing) {
  roll(-kBeside, kTurn);
  ClSimpleBitmap before = out;
  roll(kTurn, kPlateau, kFull / 2);
  EXPECT_FALSE(finished);
  EXPECT_EQ(first_difference(out, before), kNoDifference);
}

TEST_F(RolledPrint, AFirmerContactOnTheWayBackImprovesEveryColumn) {
  roll(-kBeside, kTurn, kFull * 3 / 4);
  EXPECT_EQ(first_difference(out, print), 0);
  roll(kTurn, -kBeside);
  EXPECT_TRUE(finished);
  EXPECT_EQ(first_difference(out, print), kNoDifference);
}

TEST_F(RolledPrint, ThatEndsHalfwayHasThePlatenBeyond) {
  constexpr int kLast = 90;
  roll(-kBeside, kLast);
  show(platen);
  EXPECT_TRUE(finished);
  EXPECT_EQ(first_difference(out, print), kLast + kPlateau + 1);
  EXPECT_EQ(first_difference(out, platen, kLast + kPlateau + kFade), kNoDifference);
}

TEST_F(RolledPrint, ThatIsLeftOutInTheMiddleHasThePlatenThere) {
  roll(-kBeside, 55);
  roll(180, kEnd);
  EXPECT_TRUE(finished);
  EXPECT_EQ(first_difference(out, platen, 120), 180 - kPlateau - kFade + 1);
}

TEST_F(RolledPrint, GrowsFromFrameToFrame) {
  int reached = 0;
  for (int last = 60; last < kTurn; last += 2 * kStep) {
    roll(last - 4 * kStep, last);
    const int now = first_difference(out, print, std::max(reached, 60));
    EXPECT_GT(now, reached);
    reached = now;
  }
  EXPECT_FALSE(finished);
}

TEST_F(RolledPrint, OfASecondFingerHasNothingOfTheFirst) {
  roll_to_the_right();
  show(platen);
  print.Invert();
  roll_to_the_left();
  EXPECT_TRUE(finished);
  EXPECT_EQ(first_difference(out, print), kNoDifference);
}

}  // namespace
}  // namespace Osv::lx
