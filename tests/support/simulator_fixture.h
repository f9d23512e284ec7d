#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ostrevanhvk3_simulator/bench.h"

/// @file
/// The ground for tests that use the simulator.

namespace Osv::simulator {

/// Gives each test a fresh bench: one scanner at interface 0, an empty platen, no waiting between
/// frames, and a journal that records.
class SimulatorFixture : public testing::Test {
 protected:
  SimulatorFixture() : bench(*ostrevan_simulator_bench()) {
    bench.reset();
    bench.set_pace(0);
    bench.set_timeline(Timeline::empty_platen());
    bench.record(true);
  }

  ~SimulatorFixture() override { bench.reset(); }

  /// The recorded calls in words; with a function, its calls only.
  std::vector<std::string> journal(const std::string& function = "") const {
    std::vector<std::string> words;
    for (const Call& call : bench.calls()) {
      if (function.empty() || call.function == function) {
        words.push_back(call.text());
      }
    }
    return words;
  }

  /// The names of the functions called, in their order.
  std::vector<std::string> functions_called() const {
    std::vector<std::string> names;
    for (const Call& call : bench.calls()) {
      names.push_back(call.function);
    }
    return names;
  }

  Bench& bench;
};

}  // namespace Osv::simulator
