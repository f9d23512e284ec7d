#pragma once

#include <vector>

#include "libraries/scanner_api.h"
#include "simulator/images.h"
#include "support/simulator_fixture.h"

/// @file
/// The ground for tests that look at corrected images of what lies on the platen.

namespace Osv::simulator {

/// A scanner, and an engine that corrects its frames without a mask of its own.
class PlatenFixture : public SimulatorFixture {
 protected:
  PlatenFixture()
      : m_hScanner(ftrScanOpenDeviceOnInterface(0)), m_cEngine(payload_of_scanner(bench, 0)) {
    CalibrateSetOption(m_cEngine.handle(), "DynamicFingerMask = false");
  }
  ~PlatenFixture() override { ftrScanCloseDevice(m_hScanner); }

  Bytes frame() { return take_dose_frame(m_hScanner); }

  Block image() { return m_cEngine.correct(prepare(frame())); }

  void skip(unsigned int frames) {
    for (unsigned int i = 0; i < frames; ++i) {
      frame();
    }
  }

  /// The picture of a finger as it is delivered when it has settled.
  Block settled_image() {
    bench.set_timeline(Timeline::settled_finger());
    return image();
  }

  double contamination() {
    Block block = prepare(frame());
    double percent = -1;
    EXPECT_EQ(ContaminationDetection(m_cEngine.handle(), block.header(), block.size(), &percent),
              0);
    return percent;
  }

  void* m_hScanner;
  Engine m_cEngine;
};

/// Darkness of each column, 0 for one as bright as the empty platen.
inline std::vector<double> column_darkness(const Block& image) {
  constexpr double kEmpty = 249;
  std::vector<double> darkness(static_cast<std::size_t>(image.width()));
  for (int y = 0; y < image.height(); ++y) {
    for (std::size_t x = 0; x < darkness.size(); ++x) {
      darkness[x] += (kEmpty - image.row(y)[x]) / image.height();
    }
  }
  return darkness;
}

/// The column around which the darkness lies.
inline double center_of(const std::vector<double>& darkness) {
  double sum = 0;
  double weighted = 0;
  for (std::size_t x = 0; x < darkness.size(); ++x) {
    sum += darkness[x];
    weighted += darkness[x] * static_cast<double>(x);
  }
  return weighted / sum;
}

}  // namespace Osv::simulator
