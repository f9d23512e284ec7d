#pragma once

#include <condition_variable>
#include <mutex>

/// @file
/// Where client and worker wait for each other.

namespace Osv::fuzz {

/// Keeps the worker and the client's thread from running at once, so that a session with the same
/// answers always goes the same way. The worker's place to stop is its wait while it is frozen; the
/// client goes on when the worker is there, or has ended.
class Rendezvous {
 public:
  /// @name On the client's thread
  /// @{

  /// A worker begins, or goes on from its rest.
  void let_run();

  /// Waits until the worker rests or has ended, or there was none.
  void wait();

  /// For an operation that may join the worker, which goes as it likes meanwhile. Behind it the
  /// client waits as with `wait`.
  void begin_joining();
  void end_joining();

  bool is_resting() const { return m_state == State::Resting; }
  /// @}

  /// @name On the worker's thread
  /// @{

  /// It is frozen. Returns when the client lets it run or joins it.
  void rest();

  /// Its last callback.
  void end();
  /// @}

 private:
  enum class State { Ended, Running, Resting };

  std::mutex m_lock;  // guards all below
  std::condition_variable m_changed;
  State m_state = State::Ended;
  bool m_joining = false;
};

}  // namespace Osv::fuzz
