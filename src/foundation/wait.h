#pragma once

#include <ctime>

/// @file
/// The one place where the plug-in waits.

namespace Osv {

/// How a wait is made.
enum class eWait {
  Nanosleep,  ///< `nanosleep`: the freeze poll and the pause between two passes of a worker
  BoostSleep  ///< `boost::this_thread::sleep`: the retry of a busy scanner
};

using WaitFunction = void (*)(eWait kind, int milliseconds);

/// Makes the wait. One of 0 ms still makes the call, and a `nanosleep` that a signal interrupts
/// isn't resumed.
void Wait(eWait kind, int milliseconds);

/// Puts `function` in the place of the real waits, which null brings back; returns the one before.
/// For tests, which record what was asked for and don't wait.
WaitFunction ExchangeWaitFunction(WaitFunction function);

/// The argument of `nanosleep` for a time in milliseconds.
timespec ToTimespec(int milliseconds);

}  // namespace Osv
