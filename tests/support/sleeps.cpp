#include "support/sleeps.h"

#include <pthread.h>
#include <sched.h>

#include <cerrno>
#include <condition_variable>
#include <ctime>
#include <map>
#include <mutex>
#include <utility>

namespace Osv::test {
namespace {

// Far beyond anything that works; a test that waits in vain is to fail and not to hang.
constexpr std::chrono::seconds kPatience{60};

using Duration = std::pair<long, long>;  // seconds and nanoseconds

struct Record {
  std::mutex lock;  // guards the rest
  std::condition_variable added;
  std::map<Duration, long> nanosleeps;
  std::vector<std::chrono::nanoseconds> timed_waits;
  bool interrupt_next = false;
};

Record& record() {
  static Record all;
  return all;
}

/// Notes a `nanosleep`. @return false when a signal interrupts it
bool note_nanosleep(const timespec& duration) {
  Record& all = record();
  const std::lock_guard<std::mutex> lock(all.lock);
  ++all.nanosleeps[{duration.tv_sec, duration.tv_nsec}];
  all.added.notify_all();
  return !std::exchange(all.interrupt_next, false);
}

/// Notes a wait until a point of the steady clock.
void note_timed_wait(const timespec& end) {
  using Clock = std::chrono::steady_clock;
  const auto since_start = std::chrono::seconds(end.tv_sec) + std::chrono::nanoseconds(end.tv_nsec);
  Record& all = record();
  const std::lock_guard<std::mutex> lock(all.lock);
  all.timed_waits.push_back(since_start - Clock::now().time_since_epoch());
}

}  // namespace

void Sleeps::forget() {
  Record& all = record();
  const std::lock_guard<std::mutex> lock(all.lock);
  all.nanosleeps.clear();
  all.timed_waits.clear();
  all.interrupt_next = false;
}

long Sleeps::nanosleeps(long seconds, long nanoseconds) const {
  Record& all = record();
  const std::lock_guard<std::mutex> lock(all.lock);
  return all.nanosleeps[{seconds, nanoseconds}];
}

long Sleeps::nanosleeps() const {
  Record& all = record();
  const std::lock_guard<std::mutex> lock(all.lock);
  long count = 0;
  for (const auto& [duration, times] : all.nanosleeps) {
    count += times;
  }
  return count;
}

bool Sleeps::await_nanosleeps(long seconds, long nanoseconds, long count) const {
  Record& all = record();
  std::unique_lock<std::mutex> lock(all.lock);
  return all.added.wait_for(lock, kPatience, [&] {
    return all.nanosleeps[{seconds, nanoseconds}] >= count;
  });
}

std::vector<std::chrono::nanoseconds> Sleeps::timed_waits() const {
  Record& all = record();
  const std::lock_guard<std::mutex> lock(all.lock);
  return all.timed_waits;
}

void Sleeps::interrupt_next() const {
  Record& all = record();
  const std::lock_guard<std::mutex> lock(all.lock);
  all.interrupt_next = true;
}

}  // namespace Osv::test

extern "C" {

__attribute__((visibility("default"))) int nanosleep(const timespec* duration,
                                                     timespec* remaining) {
  sched_yield();  // whoever polls with it is not to keep the processor from the others
  if (Osv::test::note_nanosleep(*duration)) {
    return 0;
  }
  if (remaining != nullptr) {
    *remaining = *duration;
  }
  errno = EINTR;
  return -1;
}

/// Lets go of the mutex for a moment, so that a caller that waits in a loop lets the others on.
__attribute__((visibility("default"))) int pthread_cond_timedwait(pthread_cond_t* /*condition*/,
                                                                  pthread_mutex_t* mutex,
                                                                  const timespec* end) {
  Osv::test::note_timed_wait(*end);
  pthread_mutex_unlock(mutex);
  sched_yield();
  pthread_mutex_lock(mutex);
  return ETIMEDOUT;
}

}  // extern "C"
