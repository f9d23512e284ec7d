#pragma once

#include <string>
#include <thread>

#include "hvk3/console.h"
#include "hvk3/wakeup.h"
#include "ostrevanhvk3_simulator/bench.h"

/// @file
/// Words on standard input that steer the simulation while a command runs.

namespace hvk3 {

/// Hands each line of standard input to the bench as it comes, until the input or this object ends.
/// Answers, and lines that are not understood, are told on the console; the next line counts all
/// the same.
class ScriptFeed {
 public:
  /// @param bench, console outlive this object
  ScriptFeed(Osv::simulator::Bench& bench, Console& console);

  /// Ends the reading at once, also within a line.
  ~ScriptFeed();
  ScriptFeed(const ScriptFeed&) = delete;
  ScriptFeed& operator=(const ScriptFeed&) = delete;

 private:
  void read_all();
  bool read_some();
  void run_lines();
  void run(const std::string& line);

  Osv::simulator::Bench& m_cBench;
  Console& m_cConsole;
  const Wakeup m_cEnd;
  std::string m_sPending;  // the thread only: read, and not run yet
  std::thread m_cThread;   // last: it uses everything above
};

}  // namespace hvk3
