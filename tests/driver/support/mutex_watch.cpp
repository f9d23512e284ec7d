#include "driver/support/mutex_watch.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <utility>
#include <vector>

namespace Osv::testing_support {
namespace {

std::atomic<pthread_mutex_t*> s_pWatched{nullptr};
std::atomic<int> s_nLocks{0};
thread_local std::vector<pthread_mutex_t*> t_held;
thread_local std::function<void()> t_tell;

struct Arming {
  pthread_mutex_t* mutex = nullptr;
  int locks_to_come = 0;
  std::function<void()> act;
};
thread_local Arming t_armed;

/// Runs the action of a `BeforeLock` whose time has come.
void act_before_locking(pthread_mutex_t* mutex) {
  if (t_armed.act && mutex == t_armed.mutex && --t_armed.locks_to_come == 0) {
    std::exchange(t_armed.act, nullptr)();
  }
}

}  // namespace

LockCount::LockCount(CXMutex& mutex) {
  s_nLocks = 0;
  s_pWatched = system_mutex(mutex);
}

LockCount::~LockCount() { s_pWatched = nullptr; }

int LockCount::so_far() const { return s_nLocks; }

pthread_mutex_t* innermost_held() { return t_held.empty() ? nullptr : t_held.back(); }

WaitNotice::WaitNotice(std::function<void()> tell) { t_tell = std::move(tell); }

WaitNotice::~WaitNotice() { t_tell = nullptr; }

BeforeLock::BeforeLock(pthread_mutex_t* mutex, int nth, std::function<void()> act) {
  t_armed = {mutex, nth, std::move(act)};
}

BeforeLock::~BeforeLock() { t_armed = {}; }

}  // namespace Osv::testing_support

extern "C" {

// NOLINTBEGIN(bugprone-reserved-identifier): the linker gives these names.
int __real_pthread_mutex_lock(pthread_mutex_t* mutex);
int __real_pthread_mutex_unlock(pthread_mutex_t* mutex);
[[gnu::visibility("default")]] int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex);
[[gnu::visibility("default")]] int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex);

int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex) {
  using namespace Osv::testing_support;
  act_before_locking(mutex);
  if (mutex == s_pWatched.load(std::memory_order_relaxed)) {
    s_nLocks.fetch_add(1, std::memory_order_relaxed);
  }
  if (t_tell) {
    if (pthread_mutex_trylock(mutex) == 0) {
      t_held.push_back(mutex);
      return 0;
    }
    std::exchange(t_tell, nullptr)();
  }
  const int result = __real_pthread_mutex_lock(mutex);
  t_held.push_back(mutex);
  return result;
}

int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex) {
  using namespace Osv::testing_support;
  const auto last = std::find(t_held.rbegin(), t_held.rend(), mutex);
  if (last != t_held.rend()) {
    t_held.erase(std::next(last).base());
  }
  return __real_pthread_mutex_unlock(mutex);
}
// NOLINTEND(bugprone-reserved-identifier)
}
