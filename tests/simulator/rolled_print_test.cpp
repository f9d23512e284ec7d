#include <vector>

#include "detection/rolled_finger_lx1.h"
#include "simulator/platen_fixture.h"

namespace Osv::simulator {
namespace {

/// A finger that rolls over the platen, and the plug-in's strategy that puts its print together.
class RolledPrint : public PlatenFixture {
 protected:
  RolledPrint() : m_cWhole(whole_print()) {
    bench.set_timeline(Timeline::empty_platen());
    EXPECT_FALSE(show());
  }

  /// Shows the next frame to the strategy. @return whether the print is finished
  bool show() {
    Block block = image();
    utilities::ClSimpleBitmap frame;
    frame.Copy(block.header());
    return m_cStrategy.Detect(frame, m_cPrint);
  }

  void roll(eRoll way, unsigned int frames) {
    constexpr unsigned int kTouching = 3;  // frames on the first side before a roll
    bench.roll(way, frames);
    for (unsigned int i = 0; i < kTouching + frames; ++i) {
      EXPECT_FALSE(show()) << i;
    }
    bench.lift_off();
  }

  /// The print is finished while the finger lifts.
  [[nodiscard]] bool lift() { return show() || show() || show(); }

  /// Each column of the print is as dark as that of the finger pressed down as a whole.
  void expect_whole_print() {
    ASSERT_EQ(m_cPrint.Width(), m_cWhole.size());
    for (unsigned long x = 0; x < m_cPrint.Width(); ++x) {
      EXPECT_NEAR(darkness_of(x), m_cWhole[x], 1 + m_cWhole[x] / 20) << x;
    }
  }

  double darkness_of(unsigned long column) const {
    constexpr double kEmpty = 249;
    const auto sum = static_cast<double>(m_cStrategy.ColumnSum(m_cPrint, column));
    return kEmpty - sum / static_cast<double>(m_cPrint.Height());
  }

  utilities::ClSimpleBitmap m_cPrint;

 private:
  std::vector<double> whole_print() {
    bench.set_print(3, ePrint::Rolled);
    return column_darkness(settled_image());
  }

  const std::vector<double> m_cWhole;
  lx::ClRolledFingerLX1 m_cStrategy;
};

TEST_F(RolledPrint, OfARollToTheRightIsWhole) {
  roll(eRoll::Right, 24);
  ASSERT_TRUE(lift());
  expect_whole_print();
}

TEST_F(RolledPrint, OfARollToTheLeftIsWhole) {
  roll(eRoll::Left, 24);
  ASSERT_TRUE(lift());
  expect_whole_print();
}

TEST_F(RolledPrint, OfARollThereAndBackIsWhole) {
  roll(eRoll::RightAndBack, 40);
  ASSERT_TRUE(lift());
  expect_whole_print();
}

TEST_F(RolledPrint, OfAFingerThatDoesNotRollLacksTheOtherSide) {
  bench.roll(eRoll::Right, 24);
  for (int i = 0; i < 6; ++i) {
    EXPECT_FALSE(show());
  }
  bench.lift_off();
  ASSERT_TRUE(lift());
  EXPECT_GT(darkness_of(120), 30);
  EXPECT_LT(darkness_of(400), 1);
}

}  // namespace
}  // namespace Osv::simulator
