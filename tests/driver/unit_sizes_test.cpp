#include <gtest/gtest.h>
#include <malloc.h>

#include <boost/make_shared.hpp>
#include <functional>
#include <memory>

#include "driver/driver_fixture.h"
#include "driver/support/sized_unit.h"

namespace Osv::lx {
namespace {

using utilities::ClSimpleBitmap;

/// A change of the size that the scanner tells.
struct Change {
  const char* name;
  Size from;
  Size to;
};

/// The worker's bitmap, prepared for a unit of the first size.
class UnitSizes : public DriverFixture, public ::testing::WithParamInterface<Change> {
 protected:
  UnitSizes() {
    SizedUnit::attached = &unit;
    libraries.use_file("libostrevancalibratesdk.so", SizedUnit::kEngine);
    EXPECT_EQ(driver.InitializeScanner(), 0UL);
    SizedUnit::answer_for_the_scanner_of(driver);
    driver.channel().SetCurrentThread();
    driver.channel().get_capture_bitmap() = boost::make_shared<ClSimpleBitmap>();
    prepare(bitmap());
  }

  ~UnitSizes() override { SizedUnit::attached = nullptr; }

  ClSimpleBitmap& bitmap() { return *driver.channel().get_currrent_bitmap(); }

  void change_size() {
    unit.size = GetParam().to;
    unit.frames = 0;
  }

  void change_unit() {
    driver.UninitializeScanner();
    change_size();
    ASSERT_EQ(driver.InitializeScanner(), 0UL);
  }

  void snap() {
    unsigned char* block = nullptr;
    EXPECT_EQ(driver.Snap(1, &block), 0UL);
    const std::unique_ptr<unsigned char[]> image(block);
  }

  /// Behind a reopening a snap prepares its bitmap, then the worker fails to prepare its own.
  void expect_snap_behind_a_failed_preparation(const std::function<void(bool)>& set_failing) {
    change_unit();
    ClSimpleBitmap snapped;
    prepare(snapped);
    set_failing(true);
    EXPECT_ANY_THROW(driver.SetActiveChannel(driver.channel(), bitmap()));
    set_failing(false);
    unit.frames = 0;
    driver.GetLiveBitmap(driver.channel(), snapped);
    EXPECT_EQ(unit.frames, 2);
    EXPECT_TRUE(unit.buffers_suffice);
  }

  void score_frames() {
    driver.m_pLiveDetection->Init();
    driver.m_pLiveDetection->SetFakeScore(1);
    bench.set_faults(
        "FakeFingerDetectionEvaluateLiveliness gives 90;"
        "FakeFingerDetectionEvaluateLiveliness answers 0");  // these frames show no finger
  }

  void fetch() { driver.GetLiveBitmap(driver.channel(), bitmap()); }

  /// A frame of the present unit has come, in a block that it fits into.
  void expect_frame() {
    EXPECT_TRUE(unit.buffers_suffice);
    EXPECT_EQ(driver.m_cRawBitmap.Width(), static_cast<unsigned long>(GetParam().to.width));
    EXPECT_EQ(driver.m_cRawBitmap.Height(), static_cast<unsigned long>(GetParam().to.height));
    EXPECT_EQ(bitmap().Width(), static_cast<unsigned long>(std::min(GetParam().to.width, 600)));
    EXPECT_EQ(bitmap().Height(), static_cast<unsigned long>(std::min(GetParam().to.height, 400)));
    EXPECT_GE(malloc_usable_size(bitmap().BI()), bitmap().FullSize());
    EXPECT_EQ(bitmap().Pixel()[0], 255 - 0x20);
  }

  SizedUnit unit{GetParam().from};
};

TEST_P(UnitSizes, BehindAReopeningTheNextFrameIsPreparedFirst) {
  change_unit();
  fetch();
  expect_frame();
  EXPECT_EQ(unit.frames, 2);
}

TEST_P(UnitSizes, BehindAReopeningTheWorkerFindsItsBitmapDirtyAndPreparesIt) {
  change_unit();
  ASSERT_TRUE(driver.IsDirty(driver.channel()));
  EXPECT_EQ(driver.SetActiveChannel(driver.channel(), bitmap()), 0UL);
  fetch();
  expect_frame();
  EXPECT_EQ(unit.frames, 2);
}

TEST_P(UnitSizes, BehindAReopeningASnapInBetweenDoesNotSpareTheWorkersPreparation) {
  change_unit();
  snap();
  fetch();
  expect_frame();
  EXPECT_EQ(unit.frames, 4);
}

TEST_P(UnitSizes, BehindAReopeningAScoredFrameFits) {
  score_frames();
  change_unit();
  fetch();
  expect_frame();
}

TEST_P(UnitSizes, BehindAReopeningAScoredFrameFitsBehindThoseOfTheUnitBefore) {
  score_frames();
  fetch();
  change_unit();
  fetch();
  expect_frame();
}

TEST_P(UnitSizes, WithinAnOpeningASnapHasTheNextFrameFit) {
  change_size();
  snap();
  fetch();
  expect_frame();
}

TEST_P(UnitSizes, WithinAnOpeningASnapHasTheNextScoredFrameFit) {
  score_frames();
  change_size();
  snap();
  fetch();
  expect_frame();
}

TEST_P(UnitSizes, WithinAnOpeningAScoredFrameTellsTheEngineNoMoreRoomThanThereIs) {
  score_frames();
  change_size();
  try {
    fetch();
  } catch (const ClLXException& refusal) {
    EXPECT_EQ(refusal.GetErrorNumber(), -21);  // the corrected image has no room in the old block
  }
  EXPECT_TRUE(unit.buffers_suffice);
  EXPECT_GE(malloc_usable_size(bitmap().BI()), bitmap().FullSize());
}

TEST_P(UnitSizes, ASnapThatAWorkersPreparationOvertookIsPreparedAgain) {
  score_frames();
  ClSimpleBitmap snapped;
  prepare(snapped);
  change_size();
  driver.channel().get_capture_bitmap() = boost::make_shared<ClSimpleBitmap>();
  prepare(bitmap());
  unit.frames = 0;
  driver.GetLiveBitmap(driver.channel(), snapped);
  EXPECT_TRUE(unit.buffers_suffice);
  EXPECT_GE(malloc_usable_size(snapped.BI()), driver.m_cRawBitmap.FullSize());
  fetch();
  expect_frame();
}

TEST_P(UnitSizes, BehindAWorkersPreparationThatFoundNoSizeASnapIsPreparedAgain) {
  expect_snap_behind_a_failed_preparation([this](bool failing) {
    unit.size = failing ? Size{-1, 480} : GetParam().to;
  });
}

TEST_P(UnitSizes, BehindAWorkersPreparationThatGotNoFrameASnapIsPreparedAgain) {
  expect_snap_behind_a_failed_preparation([this](bool failing) { unit.fails = failing; });
}

TEST_P(UnitSizes, ASnapThatAPreparationOfTheSameSizeOvertookTakesNoFurtherFrame) {
  ClSimpleBitmap snapped;
  prepare(snapped);
  driver.channel().get_capture_bitmap() = boost::make_shared<ClSimpleBitmap>();
  prepare(bitmap());
  unit.frames = 0;
  driver.GetLiveBitmap(driver.channel(), snapped);
  EXPECT_EQ(unit.frames, 1);
}

INSTANTIATE_TEST_SUITE_P(
    Changes, UnitSizes,
    ::testing::Values(Change{"FramesAndImagesGrow", {320, 240}, {1000, 800}},
                      Change{"FramesAndImagesShrink", {1000, 800}, {320, 240}},
                      Change{"OnlyFramesGrow", {640, 480}, {1000, 800}},
                      Change{"FramesGetMoreRowsAlone", {640, 480}, {640, 800}},
                      Change{"OnlyFramesShrink", {1000, 800}, {640, 480}},
                      Change{"FramesOfTheSameAreaGetOtherImages", {480, 640}, {640, 480}}),
    [](const auto& change) { return change.param.name; });

}  // namespace
}  // namespace Osv::lx
