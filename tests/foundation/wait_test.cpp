#include "foundation/wait.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/sleeps.h"

namespace Osv {
namespace {

using namespace std::chrono_literals;
using testing::IsEmpty;

/// The real waits, down to the system's functions.
struct RealWait : testing::Test {
  test::Sleeps sleeps;
};

TEST_F(RealWait, Of1500MillisecondsIsOneSecondAnd500Milliseconds) {
  Wait(eWait::Nanosleep, 1500);
  EXPECT_EQ(sleeps.nanosleeps(1, 500000000), 1);
  EXPECT_EQ(sleeps.nanosleeps(), 1);
}

TEST_F(RealWait, Of0StillEntersTheSystem) {
  Wait(eWait::Nanosleep, 0);
  EXPECT_EQ(sleeps.nanosleeps(0, 0), 1);
  EXPECT_EQ(sleeps.nanosleeps(), 1);
}

TEST_F(RealWait, ThatASignalInterruptsIsNotResumed) {
  sleeps.interrupt_next();
  Wait(eWait::Nanosleep, 100);
  EXPECT_EQ(sleeps.nanosleeps(), 1);
}

TEST_F(RealWait, OfTheOtherKindDoesNotCallNanosleep) {
  Wait(eWait::BoostSleep, 100000);
  EXPECT_EQ(sleeps.nanosleeps(), 0);
  ASSERT_EQ(sleeps.timed_waits().size(), 1U);
  EXPECT_LE(sleeps.timed_waits().front(), 100s);
  EXPECT_GT(sleeps.timed_waits().front(), 10s);  // as much of it is left on the slowest machine
}

TEST_F(RealWait, OfNanosleepIsNoTimedWait) {
  Wait(eWait::Nanosleep, 1);
  EXPECT_THAT(sleeps.timed_waits(), IsEmpty());
}

TEST_F(RealWait, ComesBackWhenNullTakesThePlaceOfAnother) {
  static int calls = 0;
  const WaitFunction before = ExchangeWaitFunction([](eWait, int) { ++calls; });
  Wait(eWait::Nanosleep, 7);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(sleeps.nanosleeps(), 0);
  ExchangeWaitFunction(nullptr);
  Wait(eWait::Nanosleep, 7);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(sleeps.nanosleeps(0, 7000000), 1);
  ExchangeWaitFunction(before);
}

}  // namespace
}  // namespace Osv
