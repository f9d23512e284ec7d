#pragma once

#include <atomic>
#include <cstdint>

#include "bench/census.h"
#include "bench/fault_plan.h"
#include "bench/journal.h"
#include "bench/log_sink.h"
#include "bench/scene.h"
#include "bench/script.h"

/// @file
/// Everything that the bench is made of.

namespace Osv::simulator {

struct Simulation {
  Journal journal;
  InstanceCensus census;
  FaultPlan faults;
  std::atomic<std::uint32_t> last_error = 0;
  LogSink log;
  Scene scene;
  Script scenario;
  Script console;  // lines that somebody says while it runs
};

/// The one of this process. It is never destroyed: threads of a program that ends may still be in a
/// call.
Simulation& simulation();

}  // namespace Osv::simulator
