#pragma once

#include <vector>

#include "client/plugin.h"
#include "ostrevanhvk3/callbacks.h"

/// @file
/// Every operation of the interface and every exported function, as a list.

namespace Osv::threads {

/// Who calls.
struct Caller {
  const client::Plugin& plugin;
  lx::ClFramegrabber& grabber;
  ClStartCallback start;  ///< what it has set with `SetCallbacks`
  ClStopCallback stop;
  void* user = nullptr;  ///< of a capture that it starts
};

/// What an operation waits for while the scanner is open.
enum class eWaitsFor {
  Nothing,
  Frame,  ///< the frame that is being fetched
};

/// Whose an operation is.
enum class eOwner {
  Everybody,
  OneThread  ///< start, stop, choice of the scanner, and the frame grabber's end
};

/// An operation with arguments, good or bad ones.
struct Operation {
  const char* name;
  eOwner owner;
  eWaitsFor waits;
  unsigned long (*call)(const Caller& caller);
  unsigned long result;  ///< while capture runs, also inside a callback
};

/// In an order in which what one of them turns on another turns off.
const std::vector<Operation>& operations();

}  // namespace Osv::threads
