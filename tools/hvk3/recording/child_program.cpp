#include "hvk3/recording/child_program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <ctime>
#include <system_error>

#include "hvk3/failure.h"

namespace hvk3 {
namespace {

/// Holds signals back while it lives: those that ask for an end, unless they are ignored, and that
/// of the program's end. They are waited for; a handler would come when it likes.
class HeldSignals {
 public:
  HeldSignals() {
    ::sigemptyset(&m_cHeld);
    for (const int number : {SIGINT, SIGQUIT, SIGTERM, SIGHUP}) {
      struct sigaction action = {};
      ::sigaction(number, nullptr, &action);
      if (action.sa_handler != SIG_IGN) {
        ::sigaddset(&m_cHeld, number);
      }
    }
    ::sigaddset(&m_cHeld, SIGCHLD);
    struct sigaction usual = {};
    usual.sa_handler = SIG_DFL;
    ::sigaction(SIGCHLD, &usual, &m_cBefore);  // ignored, it would not come
    ::sigprocmask(SIG_BLOCK, &m_cHeld, &m_cMask);
  }
  ~HeldSignals() {
    const struct timespec now = {};
    while (::sigtimedwait(&m_cHeld, nullptr, &now) > 0) {
      // It was for the program, which is gone.
    }
    ::sigprocmask(SIG_SETMASK, &m_cMask, nullptr);
    ::sigaction(SIGCHLD, &m_cBefore, nullptr);
  }
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;

  const sigset_t& mask_before() const { return m_cMask; }

  /// Waits for the next one, and passes it on. What comes from a terminal has reached the program
  /// by itself.
  void pass_on(pid_t program) const {
    siginfo_t information = {};
    const int number = ::sigwaitinfo(&m_cHeld, &information);
    if (number > 0 && number != SIGCHLD && information.si_code != SI_KERNEL) {
      ::kill(program, number);
    }
  }

 private:
  sigset_t m_cHeld = {};
  sigset_t m_cMask = {};
  struct sigaction m_cBefore = {};
};

pid_t spawn(const std::vector<std::string>& words, const sigset_t& mask, eOutput output) {
  posix_spawnattr_t attributes = {};
  ::posix_spawnattr_init(&attributes);
  ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
  ::posix_spawnattr_setsigmask(&attributes, &mask);
  posix_spawn_file_actions_t streams = {};
  ::posix_spawn_file_actions_init(&streams);
  if (output == eOutput::Error) {
    ::posix_spawn_file_actions_adddup2(&streams, STDERR_FILENO, STDOUT_FILENO);
  }
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (const std::string& word : words) {
    arguments.push_back(const_cast<char*>(word.c_str()));
  }
  arguments.push_back(nullptr);
  pid_t program = -1;
  const int failed =
      ::posix_spawnp(&program, arguments.front(), &streams, &attributes, arguments.data(), environ);
  ::posix_spawn_file_actions_destroy(&streams);
  ::posix_spawnattr_destroy(&attributes);
  if (failed != 0) {
    throw Failure(ExitStatus::Usage,
                  "can't run " + words.front() + ": " + std::generic_category().message(failed));
  }
  return program;
}

/// A standard stream that is closed would become the first file that the program opens.
void open_standard_streams() {
  int opened = STDIN_FILENO;
  while (opened >= 0 && opened <= STDERR_FILENO) {
    opened = ::open("/dev/null", O_RDWR);
  }
  ::close(opened);
}

}  // namespace

ProgramEnd run_program(const std::vector<std::string>& words, eOutput output) {
  open_standard_streams();
  const HeldSignals signals;
  const pid_t program = spawn(words, signals.mask_before(), output);
  int status = 0;
  while (::waitpid(program, &status, WNOHANG) == 0) {
    signals.pass_on(program);
  }
  constexpr int kSignalled = 128;
  return WIFSIGNALED(status) ? ProgramEnd{kSignalled + WTERMSIG(status), true}
                             : ProgramEnd{WEXITSTATUS(status), false};
}

}  // namespace hvk3
