#include "client/joining.h"

#include <dlfcn.h>
#include <pthread.h>

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace Osv::client {
namespace {

// Far beyond anything that works; a test that waits in vain is to fail and not to hang.
constexpr std::chrono::seconds kPatience{60};

struct Record {
  std::mutex lock;  // guards the rest
  std::condition_variable changed;
  bool joining = false;
};

Record& record() {
  static Record all;
  return all;
}

void set_joining(bool joining) {
  Record& all = record();
  const std::lock_guard<std::mutex> lock(all.lock);
  all.joining = joining;
  all.changed.notify_all();
}

}  // namespace

Joining::Joining() { set_joining(false); }

bool Joining::await() const {
  Record& all = record();
  std::unique_lock<std::mutex> lock(all.lock);
  return all.changed.wait_for(lock, kPatience, [&] { return all.joining; });
}

}  // namespace Osv::client

extern "C" __attribute__((visibility("default"))) int pthread_join(pthread_t thread,
                                                                   void** result) {
  using Function = int (*)(pthread_t, void**);
  static const auto next = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "pthread_join"));
  Osv::client::set_joining(true);
  return next(thread, result);
}
