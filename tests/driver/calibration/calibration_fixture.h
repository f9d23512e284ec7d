#pragma once

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

#include "driver/calibration/calibration.h"
#include "driver/support/loader_journal.h"
#include "driver/support/log_lines.h"
#include "foundation/bitmap.h"
#include "foundation/exceptions.h"
#include "support/closed_libraries.h"
#include "support/failure_of.h"
#include "support/simulator_fixture.h"

namespace Osv::testing_support {

constexpr char kEngineLibrary[] = "libostrevancalibratesdk.so";

/// A scanner that is open, for calibrations of it.
class ScannerTest : public simulator::SimulatorFixture {
 protected:
  using Words = std::vector<std::string>;

  ScannerTest() {
    EXPECT_TRUE(m_scanner.Initialize());
    bench.clear_journal();
  }

  /// What `action` logs, as in "level 7, 'text'".
  template <class Action>
  Words lines_of(Action action) {
    const LogOn log;
    bench.clear_journal();
    action();
    return log_lines(bench);
  }

  /// The failure of building a calibration of the scanner.
  template <class Failure>
  Failure failure_of_building() {
    return failure_of<Failure>([&] { const lx::CXCalibration calibration(m_scanner); });
  }

  simulator::ClosedLibraries m_libraries;
  LoaderJournal m_loader;
  ClFutronicBaseSDK m_scanner;
};

/// A calibration of the scanner with a raw frame, and an empty journal.
class CalibrationTest : public ScannerTest {
 protected:
  CalibrationTest() {
    m_raw.Create(simulator::kRawWidth, simulator::kRawHeight, 8, 0);
    m_raw.SetWhite();
    build();
  }

  void build() {
    m_calibration.reset();
    EXPECT_TRUE(m_scanner.Initialize());
    m_calibration = std::make_unique<lx::CXCalibration>(m_scanner);
    bench.clear_journal();
  }

  unsigned long result_size() { return m_calibration->ResultImageSize(m_raw.BI(), kRawSize); }

  static constexpr unsigned long kRawSize = 640 * 480 + 1024 + 40;
  static constexpr unsigned long kFinalSize = 500 * 438 + 1024 + 40;

  utilities::ClSimpleBitmap m_raw;
  std::unique_ptr<lx::CXCalibration> m_calibration;
};

}  // namespace Osv::testing_support
