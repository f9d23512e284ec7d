#include "hvk3/recording/child_program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <system_error>

#include "hvk3/failure.h"

namespace hvk3 {
namespace {

constexpr std::array<int, 4> kSignals = {SIGINT, SIGQUIT, SIGTERM, SIGHUP};

// Lock-free, so a signal handler may use it.
std::atomic<pid_t> s_nProgram = 0;

/// Those that come from a terminal have reached the program by themselves.
extern "C" void pass_signal_on(int number, siginfo_t* information, void* /*context*/) {
  if (information->si_code != SI_KERNEL) {
    ::kill(s_nProgram, number);
  }
}

/// Holds signals back and passes them on, while it lives.
class Signals {
 public:
  Signals() {
    sigset_t held = {};
    ::sigemptyset(&held);
    struct sigaction action = {};
    action.sa_sigaction = &pass_signal_on;
    action.sa_flags = SA_SIGINFO | SA_RESTART;
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
      ::sigaddset(&held, kSignals[i]);
      ::sigaction(kSignals[i], nullptr, &m_aBefore[i]);
      if (m_aBefore[i].sa_handler != SIG_IGN) {
        ::sigaction(kSignals[i], &action, nullptr);
      }
    }
    ::sigprocmask(SIG_BLOCK, &held, &m_cMask);
  }
  ~Signals() {
    let_through();
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
      ::sigaction(kSignals[i], &m_aBefore[i], nullptr);
    }
  }
  Signals(const Signals&) = delete;
  Signals& operator=(const Signals&) = delete;

  const sigset_t& mask_before() const { return m_cMask; }
  void let_through() const { ::sigprocmask(SIG_SETMASK, &m_cMask, nullptr); }

 private:
  std::array<struct sigaction, kSignals.size()> m_aBefore = {};
  sigset_t m_cMask = {};
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
  const Signals signals;
  const pid_t program = spawn(words, signals.mask_before(), output);
  s_nProgram = program;
  signals.let_through();
  int status = 0;
  while (::waitpid(program, &status, 0) < 0 && errno == EINTR) {
  }
  constexpr int kSignalled = 128;
  return WIFSIGNALED(status) ? ProgramEnd{kSignalled + WTERMSIG(status), true}
                             : ProgramEnd{WEXITSTATUS(status), false};
}

}  // namespace hvk3
