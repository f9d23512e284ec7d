#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>

#include "bench/functions.h"
#include "bench/vocabulary.h"
#include "ostrevanhvk3_simulator/bench.h"

/// @file
/// Lines that steer the simulator, in their order and at their time.

namespace Osv::simulator {

/// Carries out lines until one waits, and goes on when the calls for which it waits have ended.
/// Any thread may call it.
class Script {
 public:
  /// Carries out a line, or keeps it while an earlier one waits; gives its answer.
  /// @throws std::invalid_argument, std::runtime_error as `Bench::run`
  std::string run(Bench& bench, const std::string& line);

  /// Begins with other lines. @throws std::invalid_argument naming the line; the old ones stay then
  void set(Bench& bench, const std::string& lines);

  /// Forgets what is left, and what went wrong.
  void clear();

  ScenarioState state() const;

  /// Has to be told at the end of each call into a stand-in.
  void call_ended(Bench& bench, eFunction function) {
    if (m_bWaiting) {
      count_call(bench, function);
    }
  }

 private:
  void count_call(Bench& bench, eFunction function);
  void go_on(Bench& bench);
  std::string begin(Bench& bench, const Step& step);

  std::atomic<bool> m_bWaiting = false;  // false: calls needn't take the lock
  mutable std::mutex m_cLock;            // guards all below; held while a line is carried out
  std::deque<Step> m_dSteps;             // behind the present wait
  CallWait m_sWait;
  std::string m_sTrouble;
};

}  // namespace Osv::simulator
