#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <numeric>
#include <thread>

#include "libraries/scanner_api.h"
#include "simulator/images.h"
#include "simulator/pace_watch.h"
#include "support/simulator_fixture.h"

namespace Osv::simulator {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace std::chrono_literals;

class Frames : public SimulatorFixture {
 protected:
  Frames() : m_hScanner(ftrScanOpenDeviceOnInterface(0)) {}
  ~Frames() override { ftrScanCloseDevice(m_hScanner); }

  Bytes dose_frame(int dose) {
    Bytes frame(std::size_t{kRawWidth} * kRawHeight);
    EXPECT_EQ(ftrScanGetImageByVariableDose(m_hScanner, dose, frame.data()), 1);
    return frame;
  }

  static double mean_of(const Bytes& frame) {
    return std::accumulate(frame.begin(), frame.end(), 0.0) / static_cast<double>(frame.size());
  }

  /// Mean of the frames of a timeline, one by one.
  std::vector<double> means(unsigned int count) {
    std::vector<double> all;
    for (unsigned int i = 0; i < count; ++i) {
      all.push_back(mean_of(dose_frame(60)));
    }
    return all;
  }

  void* m_hScanner;
};

/// Mean difference of two frames, pixel by pixel.
double difference(const Bytes& first, const Bytes& second) {
  double sum = 0;
  for (std::size_t i = 0; i < first.size(); ++i) {
    sum += std::abs(first[i] - second[i]);
  }
  return sum / static_cast<double>(first.size());
}

TEST_F(Frames, AnEmptyPlatenIsDarkBecauseFramesAreNegative) {
  EXPECT_LT(mean_of(dose_frame(60)), 60);
}

TEST_F(Frames, AFingerMakesThemBrighter) {
  const double empty = mean_of(dose_frame(60));
  bench.set_timeline(Timeline::settled_finger());
  EXPECT_GT(mean_of(dose_frame(60)), empty + 20);
}

TEST_F(Frames, TheFirstRowIsTheUpperOne) {
  GrayImage picture{200, 400, Bytes(std::size_t{200} * 400, 255)};
  std::fill_n(picture.pixels.begin(), 200 * 100, 0);
  bench.set_finger(picture);
  bench.set_timeline(Timeline::settled_finger());
  const Bytes frame = dose_frame(60);
  const std::size_t middle = kRawWidth / 2;
  EXPECT_GT(frame[std::size_t{60} * kRawWidth + middle], 150);
  EXPECT_LT(frame[std::size_t{400} * kRawWidth + middle], 60);
}

TEST_F(Frames, ExposureFollowsTheDoseUntilItSaturates) {
  bench.set_timeline(Timeline::settled_finger());
  const Bytes half = dose_frame(30);
  const Bytes full = dose_frame(60);
  const Bytes most = dose_frame(400);
  EXPECT_LT(mean_of(half), mean_of(full) * 0.65);
  EXPECT_LT(*std::max_element(full.begin(), full.end()), 255);
  EXPECT_EQ(*std::max_element(most.begin(), most.end()), 255);
  EXPECT_GT(mean_of(most), mean_of(full));
}

TEST_F(Frames, NoDoseLeavesThemDark) {
  EXPECT_LT(mean_of(dose_frame(0)), 16);
  EXPECT_LT(mean_of(dose_frame(-5)), 16);
}

TEST_F(Frames, TheNoiseDiffersFromFrameToFrame) {
  const double noise = difference(dose_frame(60), dose_frame(60));
  EXPECT_GT(noise, 0.5);
  EXPECT_LT(noise, 2);
}

TEST_F(Frames, TheSameUnitGivesTheSameFramesAgain) {
  const Bytes first = dose_frame(60);
  bench.plug_in(0, Device());
  void* const scanner = ftrScanOpenDeviceOnInterface(0);
  EXPECT_EQ(take_dose_frame(scanner), first);
  ftrScanCloseDevice(scanner);
}

TEST_F(Frames, UnitsDifferInLightAndFixedPattern) {
  Device device;
  device.seed = 2;
  bench.plug_in(1, device);
  void* const scanner = ftrScanOpenDeviceOnInterface(1);
  EXPECT_GT(difference(take_dose_frame(scanner), dose_frame(60)), 2);
  ftrScanCloseDevice(scanner);
}

TEST_F(Frames, TheLightIsUneven) {
  bench.set_timeline(Timeline::settled_finger());
  bench.set_finger({kFinalWidth, kFinalHeight, Bytes(std::size_t{kFinalWidth} * kFinalHeight, 0)});
  const Bytes frame = dose_frame(60);
  const std::size_t center = std::size_t{kRawHeight / 2} * kRawWidth + kRawWidth / 2;
  EXPECT_GT(frame[center], frame[std::size_t{30} * kRawWidth + 40] + 20);
}

TEST_F(Frames, DarkAndBacklightImagesDifferFromTheDoseImage) {
  bench.set_timeline(Timeline::settled_finger());
  Bytes dark(std::size_t{kRawWidth} * kRawHeight);
  Bytes backlight = dark;
  EXPECT_EQ(ftrScanGetDarkImage(m_hScanner, dark.data()), 1);
  EXPECT_EQ(ftrScanGetBacklightImage(m_hScanner, backlight.data()), 1);
  const double dose = mean_of(dose_frame(60));
  EXPECT_LT(mean_of(dark), 20);
  EXPECT_GT(mean_of(backlight), mean_of(dark) + 20);
  EXPECT_NE(mean_of(backlight), dose);
}

TEST_F(Frames, OnlyDoseFramesMoveTheClock) {
  Bytes buffer(std::size_t{kRawWidth} * kRawHeight);
  ftrScanGetDarkImage(m_hScanner, buffer.data());
  ftrScanGetBacklightImage(m_hScanner, buffer.data());
  EXPECT_EQ(bench.frame_count(), 0U);
  ftrScanGetFrame(m_hScanner, buffer.data(), nullptr);
  dose_frame(60);
  EXPECT_EQ(bench.frame_count(), 2U);
  bench.set_timeline(Timeline());
  EXPECT_EQ(bench.frame_count(), 0U);
}

TEST_F(Frames, AFingerComesStaysAndLifts) {
  bench.set_timeline({2, 2, 2, 2, false});
  const std::vector<double> level = means(9);
  EXPECT_NEAR(level[0], level[1], 0.1);
  EXPECT_LT(level[1], level[2] - 1);
  EXPECT_LT(level[2], level[3]);
  EXPECT_LT(level[3], level[4]);
  EXPECT_NEAR(level[4], level[5], 0.1);
  EXPECT_GT(level[5], level[6]);
  EXPECT_GT(level[6], level[7]);
  EXPECT_NEAR(level[7], level[8], 0.1);
}

TEST_F(Frames, ATimelineBeginsAgain) {
  bench.set_timeline({1, 0, 1, 0, true});
  const std::vector<double> level = means(4);
  EXPECT_NEAR(level[0], level[2], 0.1);
  EXPECT_NEAR(level[1], level[3], 0.1);
  EXPECT_GT(level[1], level[0] + 10);
}

TEST_F(Frames, ATimelineWithoutPhasesIsAnEmptyPlaten) {
  const double empty = mean_of(dose_frame(60));
  bench.set_timeline({0, 0, 0, 0, true});
  EXPECT_NEAR(mean_of(dose_frame(60)), empty, 0.1);
}

TEST_F(Frames, ANewFingerIsSeenAtOnce) {
  bench.set_timeline(Timeline::settled_finger());
  const Bytes before = dose_frame(60);
  bench.set_finger({50, 50, Bytes(2500, 0)});
  EXPECT_GT(difference(before, dose_frame(60)), 10);
  bench.set_built_in_finger();
  EXPECT_LT(difference(before, dose_frame(60)), 2);
}

TEST_F(Frames, APacedSceneGivesThemNoFasterThanAsked) {
  const PaceWatch watch;
  bench.set_pace(200);
  dose_frame(60);
  dose_frame(60);
  dose_frame(60);
  EXPECT_THAT(watch.waits(), ElementsAre(0ms, 5ms, 5ms));
}

TEST_F(Frames, APacedSceneDoesNotMakeUpForFramesThatNobodyTook) {
  PaceWatch watch;
  bench.set_pace(200);
  dose_frame(60);
  watch.pass(20ms);
  dose_frame(60);
  dose_frame(60);
  EXPECT_THAT(watch.waits(), ElementsAre(0ms, 0ms, 5ms));
}

TEST_F(Frames, DarkAndBacklightImagesDoNotWaitForTheirTime) {
  const PaceWatch watch;
  Bytes buffer(std::size_t{kRawWidth} * kRawHeight);
  bench.set_pace(200);
  ftrScanGetDarkImage(m_hScanner, buffer.data());
  ftrScanGetBacklightImage(m_hScanner, buffer.data());
  EXPECT_THAT(watch.waits(), IsEmpty());
}

TEST_F(Frames, ASceneOfNoPaceDoesNotWait) {
  const PaceWatch watch;
  dose_frame(60);
  dose_frame(60);
  EXPECT_THAT(watch.waits(), IsEmpty());
}

TEST_F(Frames, SeveralThreadsMayTakeThem) {
  Bytes other;
  std::thread thread([&] {
    void* const scanner = ftrScanOpenDeviceOnInterface(0);
    for (int i = 0; i < 5; ++i) {
      other = take_dose_frame(scanner);
    }
    ftrScanCloseDevice(scanner);
  });
  for (int i = 0; i < 5; ++i) {
    bench.set_timeline(Timeline::settled_finger());
    dose_frame(60);
  }
  thread.join();
  EXPECT_EQ(bench.count("ftrScanGetImageByVariableDose"), 10U);
}

}  // namespace
}  // namespace Osv::simulator
