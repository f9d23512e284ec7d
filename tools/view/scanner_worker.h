#pragma once

#include <atomic>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>

#include "hvk3/failure.h"
#include "view/scanner_desk.h"

/// @file
/// The thread that works with the scanner.

namespace hvk3::view {

/// Every call into the plug-in is made on this thread, so the window never waits for one.
class ScannerWorker {
 public:
  /// @param context, board, events outlive the worker
  ScannerWorker(Context& context, Board& board, EventLog& events);

  /// Ends capture and waits for that.
  ~ScannerWorker();
  ScannerWorker(const ScannerWorker&) = delete;
  ScannerWorker& operator=(const ScannerWorker&) = delete;

  /// Does it when what was asked for before is done.
  void ask(eAction action);

  /// Asks for the end, and does not wait for it.
  void end();

  bool has_ended() const { return m_bEnded; }

  /// Why there was nothing to work with, if so; once the worker has ended.
  const std::optional<Failure>& failure() const { return m_cFailure; }

 private:
  void work();
  void work_at_desk();
  void fail(const Failure& failure);
  std::optional<eAction> next_action();

  Context& m_cContext;
  Board& m_cBoard;
  EventLog& m_cEvents;
  const Wakeup m_cWakeup;
  std::atomic<bool> m_bEnd = false;
  std::atomic<bool> m_bEnded = false;
  std::optional<Failure> m_cFailure;  // the thread only, until it has ended

  std::mutex m_cLock;  // guards the next one
  std::deque<eAction> m_cActions;

  std::thread m_cThread;  // last: it uses everything above
};

}  // namespace hvk3::view
