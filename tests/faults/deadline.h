#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

/// @file
/// The end of runs that hang.

namespace Osv::faults {

/// Ends the program with the name of what runs when that takes too long.
class Deadline {
 public:
  Deadline();
  ~Deadline();
  Deadline(const Deadline&) = delete;
  Deadline& operator=(const Deadline&) = delete;

  /// Something begins, in place of what was before.
  void begin(const std::string& name);

  /// Nothing runs.
  void end();

 private:
  void watch();

  std::mutex m_cLock;  // guards the rest
  std::condition_variable m_cChanged;
  std::string m_sName;
  unsigned long m_nBegun = 0;
  bool m_bRunning = false;
  bool m_bGone = false;
  std::thread m_cThread;
};

}  // namespace Osv::faults
