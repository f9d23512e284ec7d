#pragma once

#include "capture/worker_thread.h"

namespace Osv::lx {

/// The thread class that capture channels derive from.
class CWin32Thread : public CXWorkerThread {
 public:
  CWin32Thread();
  ~CWin32Thread() override;

  /// Another name for `Stop`.
  int StopMsg() { return Stop(); }
};

}  // namespace Osv::lx
