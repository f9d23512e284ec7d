#include "faults/threads.h"

#include <poll.h>

#include <algorithm>
#include <filesystem>
#include <mutex>
#include <thread>

namespace Osv::faults {
namespace {

void start_and_end_one() {
  std::thread([] {}).join();
}

}  // namespace

Threads threads() {
  // With the first thread of a program the thread sanitizer starts one of its own, for good.
  static std::once_flag s_cOnce;
  std::call_once(s_cOnce, &start_and_end_one);
  Threads all;
  for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
    all.insert(task.path().filename());
  }
  return all;
}

bool has_others(const Threads& known) {
  const Threads now = threads();
  return !std::includes(known.begin(), known.end(), now.begin(), now.end());
}

bool are_all(const Threads& known) {
  // The kernel wakes who joins before it takes the thread off.
  constexpr int kLooks = 5000;
  for (int look = 0; look < kLooks; ++look) {
    if (!has_others(known)) {
      return true;
    }
    poll(nullptr, 0, 1);
  }
  return false;
}

}  // namespace Osv::faults
