#include "hvk3/wakeup.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <limits>
#include <system_error>

namespace hvk3 {
namespace {

/// The argument of `poll`: -1 waits for ever, a part of a millisecond counts as a whole one.
int milliseconds_until(const Wakeup::Deadline& deadline) {
  using std::chrono::milliseconds;
  if (!deadline) {
    return -1;
  }
  const auto left = std::chrono::ceil<milliseconds>(*deadline - std::chrono::steady_clock::now());
  return static_cast<int>(
      std::clamp<milliseconds::rep>(left.count(), 0, std::numeric_limits<int>::max()));
}

}  // namespace

Wakeup::Wakeup() : m_nFile(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (m_nFile < 0) {
    throw std::system_error(errno, std::generic_category(), "eventfd");
  }
}

Wakeup::~Wakeup() { ::close(m_nFile); }

void Wakeup::notify() const {
  const int before = errno;
  constexpr std::uint64_t kOne = 1;
  // The only failure is a counter that is full, and a full counter wakes too.
  [[maybe_unused]] const auto written = ::write(m_nFile, &kOne, sizeof(kOne));
  errno = before;
}

bool Wakeup::wait(const Deadline& deadline, int written_file) const {
  std::array<pollfd, 2> files = {pollfd{m_nFile, POLLIN, 0}, pollfd{written_file, POLLOUT, 0}};
  const int ready = ::poll(files.data(), files.size(), milliseconds_until(deadline));
  if (ready > 0) {
    std::uint64_t count = 0;
    [[maybe_unused]] const auto got = ::read(m_nFile, &count, sizeof(count));
  }
  return ready != 0;  // a signal that interrupts the wait counts as a wake-up
}

bool Wakeup::wait_for_input(int file) const {
  std::array<pollfd, 2> files = {pollfd{m_nFile, POLLIN, 0}, pollfd{file, POLLIN, 0}};
  int ready = 0;
  do {
    ready = ::poll(files.data(), files.size(), -1);
  } while (ready < 0 && errno == EINTR);
  return ready > 0 && files[0].revents == 0;
}

Wakeup::Deadline deadline_after(double seconds) {
  using Clock = std::chrono::steady_clock;
  if (seconds == 0.0) {
    return std::nullopt;
  }
  return Clock::now() +
         std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
}

}  // namespace hvk3
