#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "recorder/format/arguments.h"
#include "recorder/format/recording.h"
#include "recorder/session/answer.h"

/// @file
/// Answers the calls of this process from a recording.

namespace Osv::recorder {

/// The call at which a replay can't go on, and why.
struct LastCall {
  std::uint64_t number;  ///< from 1; one too many has that behind its thread's last recorded one
  eFunction function;    ///< what the program called
  std::string why;
};

/// What becomes of a replay.
class Ending {
 public:
  virtual ~Ending() = default;

  /// So many calls have been answered by now.
  virtual void played(std::uint64_t /*calls*/) {}

  /// @name When it can't go on
  /// Neither returns: the process ends, or an exception goes out through the call.
  /// @{
  /// The program makes another call than the one recorded.
  [[noreturn]] virtual void diverged(const LastCall& call) = 0;

  /// The recording can't be used.
  [[noreturn]] virtual void damaged(const LastCall& call) = 0;
  /// @}
};

/// A call is answered by the next one of a recorded thread that made the same calls so far, when
/// the calls that were answered before it have been made. Another thread's call is waited for, but
/// not for ever: threads meet in other orders, and a capture is stopped earlier or later. What a
/// stopped capture leaves over is no divergence; a capture that goes on beyond its recorded end
/// gets its last frame again. Lines to the log are not compared: they have no answer. Any thread.
class Player {
 public:
  using Milliseconds = std::chrono::milliseconds;

  Player(std::unique_ptr<Recording> recording, Milliseconds patience,
         std::unique_ptr<Ending> ending);

  bool pixels() const { return m_pRecording->header().pixels; }

  /// Answers a call.
  /// @param thread number of the calling thread
  /// @param take_answer puts the answer where it belongs
  void answer(eFunction function, std::uint32_t thread, const Arguments& arguments,
              const std::function<void(Answer&)>& take_answer);

  /// Tells that a thread makes no more calls.
  void thread_ended(std::uint32_t thread);

  /// Tells which calls were recorded and not made; empty for none.
  std::string left_over() const;

 private:
  using Clock = std::chrono::steady_clock;
  using Lock = std::unique_lock<std::mutex>;

  /// A recorded thread.
  struct Thread {
    std::vector<std::size_t> calls;  // by their places in the recording
    std::size_t next = 0;
    std::size_t repeated = SIZE_MAX;  // beyond the end: the place that comes next, in its calls
    bool has_frames = false;
    bool bound = false;    // a living thread makes its calls
    bool ended = false;    // and has ended
    bool is_late = false;  // nobody waits for it until it makes a call
  };

  struct Wanted {
    eFunction function;
    const Bytes& arguments;
    std::size_t hash;  // of the arguments
    Thread* own;       // null for a thread that makes its first call
  };

  bool is_next(const Thread& thread, const Wanted& wanted) const;
  bool is_same(std::size_t call, const Wanted& wanted) const;
  Thread* find(const Wanted& wanted);
  const Thread* first_thread() const;
  bool must_wait(const Thread& thread) const;
  void give_up_waiting(const Thread& thread);
  std::size_t choose(Lock& lock, Wanted& wanted, std::uint32_t thread);
  std::size_t take(Thread& thread, std::uint32_t living);
  Milliseconds pause(const Thread& thread, std::size_t repeated) const;
  std::size_t likeness(const Thread& thread, std::size_t place) const;
  std::optional<std::size_t> repeated(const Wanted& wanted) const;
  std::optional<std::size_t> expected(const Wanted& wanted) const;
  std::size_t last_recorded(const Wanted& wanted) const;
  [[noreturn]] void diverge(const Wanted& wanted);

  std::unique_ptr<Recording> m_pRecording;
  const Milliseconds m_cPatience;
  std::unique_ptr<Ending> m_pEnding;
  mutable std::mutex m_cLock;
  std::condition_variable m_cProgress;
  std::vector<std::unique_ptr<Thread>> m_vThreads;  // in the order of their first calls
  std::unordered_map<std::uint32_t, Thread*> m_cLiving;
  std::size_t m_nMade = 0;
};

}  // namespace Osv::recorder
