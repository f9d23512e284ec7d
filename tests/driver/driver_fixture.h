#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <ctime>
#include <ostream>
#include <string>
#include <vector>

#include "driver/ostrevan_hvk3_sdk.h"
#include "driver/support/log_lines.h"
#include "foundation/exceptions.h"
#include "foundation/logging_client.h"
#include "foundation/wait.h"
#include "support/closed_libraries.h"
#include "support/configuration_file.h"
#include "support/simulator_fixture.h"

/// @file
/// The ground for tests of the driver: a driver over the simulator, its log in the journal.

namespace Osv::lx {

/// A whole driver with its members open.
struct Driver : ClOstrevanHVK3SDK {
  Driver() : ClOstrevanHVK3SDK(nullptr) {}
  void FreezeSDK(ClFrameGrabberChannel& /*channel*/, bool /*freeze*/) override {}

  using ClOstrevanHVK3SDK::CaptureBmp;
  using ClOstrevanHVK3SDK::CaptureLDBmp;
  using ClOstrevanHVK3SDK::CaptureUncorrected;
  using ClOstrevanHVK3SDK::FuzzyImage;
  using ClOstrevanHVK3SDK::kNoActiveChannel;
  using ClOstrevanHVK3SDK::kNoActiveScanner;
  using ClOstrevanHVK3SDK::m_bInitialized;
  using ClOstrevanHVK3SDK::m_cCBMutex;
  using ClOstrevanHVK3SDK::m_cChannels;
  using ClOstrevanHVK3SDK::m_cLock;
  using ClOstrevanHVK3SDK::m_cRawBitmap;
  using ClOstrevanHVK3SDK::m_cSDKInfo;
  using ClOstrevanHVK3SDK::m_cSetting;
  using ClOstrevanHVK3SDK::m_cUnitLock;
  using ClOstrevanHVK3SDK::m_dLifeness;
  using ClOstrevanHVK3SDK::m_nActiveChannel;
  using ClOstrevanHVK3SDK::m_nActiveScanner;
  using ClOstrevanHVK3SDK::m_nCalibratedSize;
  using ClOstrevanHVK3SDK::m_nImageDataFormat;
  using ClOstrevanHVK3SDK::m_nLastError;
  using ClOstrevanHVK3SDK::m_nLifenessState;
  using ClOstrevanHVK3SDK::m_pCalibration;
  using ClOstrevanHVK3SDK::m_pCBData;
  using ClOstrevanHVK3SDK::m_pLiveDetection;
  using ClOstrevanHVK3SDK::m_pScanner;
  using ClOstrevanHVK3SDK::PrepareImage;
  using ClOstrevanHVK3SDK::RequireExtendedApi;
  using ClOstrevanHVK3SDK::ResetLD;

  ClOstrevanHVK3Channel& channel() { return m_cChannels.front(); }
};

/// A refusal: number and text of a `ClLXException`.
struct Failure {
  int number = 0;
  std::string text;

  bool operator==(const Failure&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Failure& failure) {
  return out << failure.number << " '" << failure.text << "'";
}

/// What `action` is refused with.
template <typename Action>
Failure failure_of(Action action) {
  try {
    action();
  } catch (const ClLXException& refusal) {
    return {refusal.GetErrorNumber(), refusal.GetDescription()};
  }
  return {0, "no refusal"};
}

/// Waits that take no time, for a scope. They still give others a turn: a worker that never pauses
/// would hardly let a client have the driver's lock.
class NoWaits {
 public:
  NoWaits() : m_before(ExchangeWaitFunction(&NoWaits::note)) { s_count = 0; }
  ~NoWaits() { ExchangeWaitFunction(m_before); }
  NoWaits(const NoWaits&) = delete;
  NoWaits& operator=(const NoWaits&) = delete;

  static unsigned int count() { return s_count; }

 private:
  static void note(eWait /*kind*/, int /*milliseconds*/) {
    ++s_count;
    const timespec no_time = ToTimespec(0);
    nanosleep(&no_time, nullptr);
  }

  inline static std::atomic<unsigned int> s_count{0};
  WaitFunction m_before;
};

/// A bench with one scanner at interface 0, and a log whose lines are in the journal.
class LoggedFixture : public simulator::SimulatorFixture {
 protected:
  /// The log's lines as "7 text".
  std::vector<std::string> log_lines() const {
    std::vector<std::string> lines;
    for (const simulator::Call& call : bench.calls()) {
      if (call.function == "OsvLFLog") {
        lines.push_back(line_of(call));
      }
    }
    return lines;
  }

  /// The functions called, log lines left out.
  std::vector<std::string> functions() const {
    std::vector<std::string> names = functions_called();
    names.erase(std::remove(names.begin(), names.end(), "OsvLFLog"), names.end());
    return names;
  }

  /// The journal in which log lines stand as "7 text" and calls with their names alone.
  std::vector<std::string> story() const {
    std::vector<std::string> entries;
    for (const simulator::Call& call : bench.calls()) {
      entries.push_back(call.function == "OsvLFLog" ? line_of(call) : call.function);
    }
    return entries;
  }

  simulator::ClosedLibraries libraries;
  testing_support::LogOn log;
  NoWaits waits;

 private:
  /// Out of "level 7, 'text'".
  static std::string line_of(const simulator::Call& call) {
    constexpr std::size_t kLevel = 6;
    constexpr std::size_t kText = 10;
    return call.arguments.substr(kLevel, 1) + " " +
           call.arguments.substr(kText, call.arguments.size() - kText - 1);
  }
};

/// A driver that has touched no scanner, with an empty journal.
class DriverFixture : public LoggedFixture {
 protected:
  DriverFixture() { bench.clear_journal(); }

  /// A driver whose scanner is open; the journal is empty.
  void open() {
    ASSERT_EQ(driver.InitializeScanner(), 0UL);
    bench.clear_journal();
  }

  /// Prepares the channel and `bitmap`; the journal is empty then.
  void prepare(utilities::ClSimpleBitmap& bitmap) {
    ASSERT_EQ(driver.SetActiveChannel(driver.channel(), bitmap), 0UL);
    bench.clear_journal();
  }

  Driver driver;
};

}  // namespace Osv::lx
