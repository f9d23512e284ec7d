#pragma once

#include <gmock/gmock.h>

#include <cstddef>
#include <string>
#include <vector>

#include "driver/device/futronic_base_sdk.h"
#include "driver/support/log_lines.h"
#include "driver/support/mutex_watch.h"
#include "support/closed_libraries.h"
#include "support/simulator_fixture.h"

namespace Osv::testing_support {

constexpr char kScannerLibrary[] = "libKR9ScanAPI.so";

/// A device whose inside a test may see.
struct DeviceProbe : ClFutronicBaseSDK {
  using ClFutronicBaseSDK::ftrHandle;
  using ClFutronicBaseSDK::m_cScannerLock;
  using ClFutronicBaseSDK::m_nGreenLED;
  using ClFutronicBaseSDK::m_nReadPos;
  using ClFutronicBaseSDK::m_nRedLED;
  using ClFutronicBaseSDK::m_nWritePos;
  using ClFutronicBaseSDK::m_pApiLib;
  using ClFutronicBaseSDK::m_sLogFileName;

  /// The functions of the scanner library, for a test that puts its own in.
  ClKR9APILib& table() { return *Api(); }
};

/// A device that has not touched the scanner library, over a fresh bench.
class DeviceTest : public simulator::SimulatorFixture {
 protected:
  using Words = std::vector<std::string>;

  /// What `action` calls, in words.
  template <class Action>
  Words calls_of(Action action) {
    bench.clear_journal();
    action();
    return journal();
  }

  /// What `action` logs, as in "level 7, 'text'".
  template <class Action>
  Words lines_of(Action action) {
    const LogOn log;
    bench.clear_journal();
    action();
    return log_lines(bench);
  }

  simulator::ClosedLibraries m_libraries;
  DeviceProbe m_device;
};

/// A device with the scanner of interface 0 open as handle 2, and an empty journal.
class OpenDeviceTest : public DeviceTest {
 protected:
  static constexpr std::size_t kFrameSize =
      std::size_t{simulator::kRawWidth} * simulator::kRawHeight;

  OpenDeviceTest() {
    EXPECT_TRUE(m_device.Initialize());
    bench.clear_journal();
  }

  std::vector<unsigned char> m_frame = std::vector<unsigned char>(kFrameSize);
};

}  // namespace Osv::testing_support
