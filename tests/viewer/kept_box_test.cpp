#include "view/kept_box.h"

#include <gtest/gtest.h>

#include "tools/image_builder.h"

namespace hvk3::test {
namespace {

using view::Kept;

std::unique_ptr<Kept> snap(unsigned int touch) {
  return std::make_unique<Kept>(Kept{make_gray_image(1, 1, 0), true, touch});
}

std::unique_ptr<Kept> settled(unsigned int touch) {
  return std::make_unique<Kept>(Kept{make_gray_image(1, 1, 0), false, touch});
}

/// What the window gets.
std::unique_ptr<Kept> take(view::KeptBox& box) {
  auto letter = box.take();
  return letter ? *std::move(letter) : nullptr;
}

TEST(KeptBox, LetsASnapTakeThePlaceOfASettledImage) {
  view::KeptBox box;
  box.put(settled(1));
  box.put(snap(1));
  EXPECT_TRUE(take(box)->snap);
}

TEST(KeptBox, KeepsASnapThatNobodyTookWhileTheSameFingerLies) {
  view::KeptBox box;
  box.put(snap(1));
  box.put(settled(1));
  EXPECT_TRUE(take(box)->snap);
}

TEST(KeptBox, KeepsASnapThatWasTakenWhileTheSameFingerLies) {
  view::KeptBox box;
  box.put(snap(1));
  take(box);
  box.put(settled(1));
  EXPECT_EQ(take(box), nullptr);
}

TEST(KeptBox, LetsAnotherFingerTakeThePlaceOfASnap) {
  view::KeptBox box;
  box.put(snap(1));
  box.put(settled(2));
  EXPECT_EQ(take(box)->touch, 2U);
  box.put(settled(2));
  EXPECT_FALSE(take(box)->snap);
}

TEST(KeptBox, ForgetsASnapWithTheScanner) {
  view::KeptBox box;
  box.put(snap(1));
  box.put(nullptr);
  EXPECT_EQ(take(box), nullptr);
  box.put(settled(1));
  EXPECT_FALSE(take(box)->snap);
}

}  // namespace
}  // namespace hvk3::test
