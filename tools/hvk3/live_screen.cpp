#include "hvk3/live_screen.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "hvk3/failure.h"

namespace hvk3 {
namespace {

// The alternate screen, cleared, and no cursor; and back.
constexpr std::string_view kTake = "\x1b[?1049h\x1b[2J\x1b[?25l";
constexpr std::string_view kGiveBack = "\x1b[0m\x1b[?25h\x1b[?1049l";

// Lock-free, so a signal handler may use them.
std::atomic<int> s_nFile = -1;
std::atomic<const Wakeup*> s_pWakeup = nullptr;
std::atomic<bool> s_bStale = false;
std::atomic<bool> s_bSuspend = false;

void wake() {
  if (const Wakeup* const wakeup = s_pWakeup) {
    wakeup->notify();
  }
}

extern "C" void take_change_of_size(int /*signal*/) {
  s_bStale = true;
  wake();
}

extern "C" void take_suspension(int /*signal*/) {
  s_bSuspend = true;
  wake();
}

/// SA_RESETHAND has the signal's own effect follow.
extern "C" void take_end(int signal) {
  LiveScreen::give_back_now();
  ::raise(signal);
}

bool write_at_once(int file, std::string_view text) {
  return ::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

/// What the terminal has not read goes where it leaves no room after a moment; the half of a
/// control sequence that this may leave does no harm in front of another.
void write_urgently(int file, std::string_view text) {
  constexpr int kMoment = 100;
  if (write_at_once(file, text)) {
    return;
  }
  pollfd room = {file, POLLOUT, 0};
  if (::poll(&room, 1, kMoment) <= 0 || !write_at_once(file, text)) {
    ::tcflush(file, TCOFLUSH);
    (void)write_at_once(file, text);
  }
}

/// Opens the terminal anew: whether a write waits is a property of what was opened, and standard
/// output's is shared with other programs.
int open_without_waiting() {
  std::array<char, 256> name = {};
  return ::ttyname_r(STDOUT_FILENO, name.data(), name.size()) == 0
             ? ::open(name.data(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)
             : -1;
}

}  // namespace

void LiveScreen::require_terminal() {
  if (::isatty(STDOUT_FILENO) == 0) {
    throw Failure(ExitStatus::Usage, "a preview needs a terminal, and standard output is none");
  }
  const char* const type = std::getenv("TERM");
  if (type == nullptr || std::string_view(type).empty() || std::string_view(type) == "dumb") {
    throw Failure(ExitStatus::Usage,
                  "a preview needs a terminal whose cursor can be moved, and TERM names none");
  }
}

LiveScreen::LiveScreen(const Wakeup& wakeup) : m_nFile(open_without_waiting()) {
  if (m_nFile < 0) {
    throw Failure(ExitStatus::OutputFailed, "the terminal can't be opened for a preview");
  }
  s_bStale = true;
  s_bSuspend = false;
  s_pWakeup = &wakeup;
  s_nFile = m_nFile;
  watch(SIGWINCH, &take_change_of_size, SA_RESTART);
  watch(SIGTSTP, &take_suspension, SA_RESTART);
  for (const int signal : {SIGQUIT, SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGSEGV}) {
    watch(signal, &take_end, static_cast<int>(SA_RESETHAND));
  }
  write_urgently(m_nFile, kTake);
}

LiveScreen::~LiveScreen() {
  for (const Watched& watched : m_vWatched) {
    ::sigaction(watched.signal, &watched.before, nullptr);
  }
  s_pWakeup = nullptr;
  give_back_now();
  ::close(m_nFile);
}

/// A signal that is ignored, or is another's, stays so.
void LiveScreen::watch(int signal, void (*handler)(int), int flags) {
  Watched watched = {signal, {}};
  ::sigaction(signal, nullptr, &watched.before);
  if (watched.before.sa_handler != SIG_DFL) {
    return;
  }
  struct sigaction action = {};
  action.sa_handler = handler;
  action.sa_flags = flags;
  ::sigaction(signal, &action, nullptr);
  m_vWatched.push_back(watched);
}

bool LiveScreen::keep_up() {
  if (s_bSuspend.exchange(false)) {
    write_urgently(m_nFile, kGiveBack);
    ::raise(SIGSTOP);
    write_urgently(m_nFile, kTake);
    s_bStale = true;
  }
  const bool anew = s_bStale.exchange(false);
  if (anew) {
    m_nWritten = m_sText.size();
  }
  return anew;
}

void LiveScreen::show(std::string text) {
  m_sText = std::move(text);
  m_nWritten = 0;
  go_on();
}

void LiveScreen::go_on() {
  while (!is_idle()) {
    const ssize_t written =
        ::write(m_nFile, m_sText.data() + m_nWritten, m_sText.size() - m_nWritten);
    if (written >= 0) {
      m_nWritten += static_cast<std::size_t>(written);
    } else if (errno == EAGAIN) {
      return;
    } else if (errno != EINTR) {
      m_nWritten = m_sText.size();  // the terminal has gone
    }
  }
}

void LiveScreen::give_back_now() {
  const int file = s_nFile.exchange(-1);
  if (file >= 0) {
    write_urgently(file, kGiveBack);
  }
}

}  // namespace hvk3
