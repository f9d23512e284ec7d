#include "faults/threads.h"

#include <poll.h>

#include <algorithm>
#include <filesystem>

namespace Osv::faults {

Threads threads() {
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
