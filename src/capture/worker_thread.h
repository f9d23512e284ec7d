#pragma once

#include <pthread.h>

/// @file
/// A POSIX thread behind an object.

namespace Osv {

/// Runs the virtual `Work` of a derived class on a thread of its own. The object must outlive its
/// thread: the destructor neither stops nor joins it. It can be started again after `Stop`.
///
/// `Start` and `Stop` are for the owner's thread, `Run` and `Work` run on the new one.
class CXWorkerThread {
 public:
  CXWorkerThread(const CXWorkerThread&) = delete;
  CXWorkerThread& operator=(const CXWorkerThread&) = delete;
  virtual ~CXWorkerThread() = default;

  /// Starts a joinable thread.
  /// @return false when the system refused it; `Stop` is then harmless
  virtual bool Start();

  /// Joins the thread; blocks until `Work` has returned. Does not ask it to end, which the derived
  /// class has to do before, and may be called once only for each thread.
  /// @return what `Work` returned; 0 when nothing was started
  virtual int Stop();

  /// Sends the thread signal 15, which by default ends the process. Only between `Start` and
  /// `Stop`.
  /// @return true
  virtual bool Kill();

  /// The thread's body. Nothing catches what it throws.
  virtual int Work() = 0;

  /// Bytes of stack; 0 for the system's default.
  virtual unsigned long GetStackSize() const { return 0x100000; }

  /// 1 for system scope, anything else for process scope.
  virtual int GetConcurrencyScope() const { return 1; }

  /// The priority, or `kDefaultPriority` to leave it alone.
  virtual int GetSchedPriority() const { return kDefaultPriority; }

  /// The thread's entry: `Work` of the `CXWorkerThread` at `object`, its result widened.
  static void* Run(void* object);

  /// Names the calling thread; 15 characters count.
  static void SetName(const char* name);

  /// Gives up the processor.
  static void Relinquish();

  /// Waits; an interrupted wait is not resumed, and 0 still makes the call.
  static void Sleep(int milliseconds);

 protected:
  static constexpr int kDefaultPriority = 0x7FFFFFFF;

  CXWorkerThread() = default;

  pthread_t m_hThread = 0;  ///< the running or last thread, 0 for none; the owner's alone
};

}  // namespace Osv
