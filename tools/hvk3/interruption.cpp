#include "hvk3/interruption.h"

#include <array>
#include <atomic>
#include <csignal>

#include "hvk3/failure.h"
#include "hvk3/live_screen.h"

namespace hvk3 {
namespace {

constexpr std::array<int, 3> kSignals = {SIGINT, SIGTERM, SIGHUP};

// Lock-free, so a signal handler may use them.
std::atomic<const Wakeup*> s_pWakeup = nullptr;
std::atomic<int> s_nSignal = 0;

extern "C" void take_signal(int number) {
  if (s_nSignal.exchange(number) != 0) {
    LiveScreen::give_back_now();
    std::signal(number, SIG_DFL);
    ::raise(number);  // comes when this handler returns
    return;
  }
  if (const Wakeup* const wakeup = s_pWakeup) {
    wakeup->notify();
  }
}

bool is_ignored(int number) {
  struct sigaction action = {};
  return ::sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

Interruption::Interruption(const Wakeup& wakeup) {
  s_nSignal = 0;
  s_pWakeup = &wakeup;
  struct sigaction action = {};
  action.sa_handler = &take_signal;
  action.sa_flags = SA_RESTART;
  for (const int number : kSignals) {
    if (!is_ignored(number)) {
      ::sigaction(number, &action, nullptr);
    }
  }
}

Interruption::~Interruption() {
  for (const int number : kSignals) {
    if (!is_ignored(number)) {
      std::signal(number, SIG_DFL);
    }
  }
  s_pWakeup = nullptr;
}

void Interruption::check() const {
  if (const int number = s_nSignal; number != 0) {
    throw Failure::interrupted(number);
  }
}

}  // namespace hvk3
