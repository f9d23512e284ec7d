#include "foundation/wait.h"

#include <atomic>
#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <boost/thread/thread.hpp>

namespace Osv {
namespace {

void really_wait(eWait kind, int milliseconds) {
  if (kind == eWait::Nanosleep) {
    const timespec duration = ToTimespec(milliseconds);
    nanosleep(&duration, nullptr);
  } else {
    boost::this_thread::sleep(boost::posix_time::milliseconds(milliseconds));
  }
}

std::atomic<WaitFunction> g_wait{&really_wait};

}  // namespace

void Wait(eWait kind, int milliseconds) { g_wait.load()(kind, milliseconds); }

WaitFunction ExchangeWaitFunction(WaitFunction function) {
  return g_wait.exchange(function == nullptr ? &really_wait : function);
}

timespec ToTimespec(int milliseconds) {
  return timespec{milliseconds / 1000, (milliseconds % 1000) * 1000000L};
}

}  // namespace Osv
