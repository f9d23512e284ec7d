#include <gtest/gtest.h>

#include "driver/driver_fixture.h"
#include "foundation/exceptions.h"
#include "foundation/logging_client.h"
#include "support/allocations.h"

namespace Osv::lx {
namespace {

constexpr int kFrames = 50;

class FrameAllocations : public DriverFixture {
 protected:
  FrameAllocations() {
    bench.record(false);
    bench.set_timeline(simulator::Timeline::settled_finger());
  }

  /// What `kFrames` frames allocate once capture runs.
  long allocations_of_frames() {
    const auto fetch = [&] { driver.GetLiveBitmap(driver.channel(), bitmap); };
    EXPECT_EQ(driver.SetActiveChannel(driver.channel(), bitmap), 0UL);
    fetch();
    fetch();
    const long before = test::allocations_so_far();
    for (int frame = 0; frame < kFrames; ++frame) {
      fetch();
    }
    return test::allocations_so_far() - before;
  }

  utilities::ClSimpleBitmap bitmap;
};

TEST_F(FrameAllocations, APlainFrameAllocatesNothing) { EXPECT_EQ(allocations_of_frames(), 0); }

TEST_F(FrameAllocations, AFrameWithFakeFingerDetectionAllocatesNothing) {
  driver.SetProperty(ePropLiveliness, 1);
  EXPECT_EQ(allocations_of_frames(), 0);
}

TEST_F(FrameAllocations, APreparationThatTheEngineEndsKeepsNothing) {
  const auto failing_preparation = [&] {
    bench.set_faults("Calibrate call 2 fails with -5");
    EXPECT_THROW(driver.SetActiveChannel(driver.channel(), bitmap), ClLXException);
    return test::blocks_in_use();
  };
  failing_preparation();
  const long before = failing_preparation();
  EXPECT_EQ(failing_preparation(), before);
}

TEST_F(FrameAllocations, TheDirtyFlagAndTheSwitchOfDetectionAllocateNothing) {
  allocations_of_frames();
  const long before = test::allocations_so_far();
  EXPECT_TRUE(driver.IsDirty(driver.channel()));  // no worker's bitmap was ever shaped
  EXPECT_FALSE(driver.SupressFingerDetection());
  EXPECT_EQ(test::allocations_so_far(), before);
}

class FailureWithoutMemory : public DriverFixture {
 protected:
  // The simulator's log needs memory, too.
  FailureWithoutMemory() { utilities::ClLoggingFacilityClient::Destroy(); }

  /// The text that is stored of one that a failure brings.
  std::string stored(const std::string& text) {
    {
      const test::NoMemory no_memory;
      EXPECT_EQ(driver.SetLastFGError(23, text), 23UL);
    }
    return driver.LastErrorText();
  }
};

TEST_F(FailureWithoutMemory, KeepsItsText) {
  const std::string longest(1024, 'x');
  EXPECT_EQ(stored(longest), longest);
}

TEST_F(FailureWithoutMemory, HasATextThatIsLongerThanAnyCut) {
  const std::string kept = stored(std::string(5000, 'x'));
  EXPECT_GE(kept.size(), 1024U);
  EXPECT_EQ(kept, std::string(kept.size(), 'x'));
}

TEST_F(FailureWithoutMemory, OfTheScannerIsStillJudged) {
  const test::NoMemory no_memory;
  EXPECT_THROW(driver.CheckScannerError(121), ClLXException);
  EXPECT_THROW(driver.CheckScannerError(2), ClLXException);
}

}  // namespace
}  // namespace Osv::lx
