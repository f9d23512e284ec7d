#include "support/process.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>
#include <utility>

namespace hvk3::test {
namespace {

struct Pipe {
  int read_end = -1;
  int write_end = -1;
};

Pipe make_pipe() {
  std::array<int, 2> ends = {};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw std::runtime_error("no pipe");
  }
  return {ends[0], ends[1]};
}

Pipe make_terminal(const Terminals& terminals) {
  const winsize size = {
      .ws_row = terminals.rows, .ws_col = terminals.columns, .ws_xpixel = 0, .ws_ypixel = 0};
  Pipe ends;
  if (::openpty(&ends.read_end, &ends.write_end, nullptr, nullptr, &size) != 0) {
    throw std::runtime_error("no terminal");
  }
  ::fcntl(ends.read_end, F_SETFD, FD_CLOEXEC);
  ::fcntl(ends.write_end, F_SETFD, FD_CLOEXEC);
  return ends;
}

void close_end(int& file) {
  if (file >= 0) {
    ::close(std::exchange(file, -1));
  }
}

pid_t spawn(const std::vector<std::string>& command, const Pipe& in, const Pipe& out,
            const Pipe& error) {
  posix_spawn_file_actions_t actions = {};
  ::posix_spawn_file_actions_init(&actions);
  if (in.read_end >= 0) {
    ::posix_spawn_file_actions_adddup2(&actions, in.read_end, STDIN_FILENO);
  } else {
    ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  }
  ::posix_spawn_file_actions_adddup2(&actions, out.write_end, STDOUT_FILENO);
  ::posix_spawn_file_actions_adddup2(&actions, error.write_end, STDERR_FILENO);
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string& argument : command) {
    arguments.push_back(const_cast<char*>(argument.c_str()));
  }
  arguments.push_back(nullptr);
  pid_t process = -1;
  const int failed =
      ::posix_spawn(&process, arguments.front(), &actions, nullptr, arguments.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  if (failed != 0) {
    throw std::runtime_error("can't run " + command.front());
  }
  return process;
}

int status_of(int wait_status) {
  constexpr int kSignalled = 128;
  return WIFSIGNALED(wait_status) ? kSignalled + WTERMSIG(wait_status) : WEXITSTATUS(wait_status);
}

}  // namespace

Process::Process(const std::vector<std::string>& command, Terminals terminals, eInput input) {
  Pipe in = input == eInput::Written ? make_pipe() : Pipe();
  Pipe out = terminals.out ? make_terminal(terminals) : make_pipe();
  Pipe error = terminals.error ? make_terminal(terminals) : make_pipe();
  m_nProcess = spawn(command, in, out, error);
  close_end(in.read_end);
  close_end(out.write_end);
  close_end(error.write_end);
  m_nIn = in.write_end;
  m_nOut = out.read_end;
  m_nError = error.read_end;
}

Process::~Process() {
  if (m_nProcess > 0) {
    send(SIGKILL);
    wait();
  }
  close_end(m_nIn);
}

bool Process::read_some() {
  std::array<pollfd, 2> files = {pollfd{m_bReadsOutput ? m_nOut : -1, POLLIN, 0},
                                 pollfd{m_nError, POLLIN, 0}};
  if ((m_nOut < 0 && m_nError < 0) || ::poll(files.data(), files.size(), -1) <= 0) {
    return false;
  }
  const auto take = [](const pollfd& ready, int& file, std::string& text) {
    std::array<char, 4096> buffer = {};
    const ssize_t got = ready.revents == 0 ? -1 : ::read(file, buffer.data(), buffer.size());
    if (got > 0) {
      text.append(buffer.data(), static_cast<std::size_t>(got));
    } else if (ready.revents != 0) {
      close_end(file);
    }
  };
  take(files[0], m_nOut, m_cOutcome.out);
  take(files[1], m_nError, m_cOutcome.error);
  return true;
}

bool Process::wait_for_error_text(const std::string& text) {
  while (m_cOutcome.error.find(text) == std::string::npos) {
    if (!read_some()) {
      return false;
    }
  }
  return true;
}

bool Process::wait_for_output_text(const std::string& text) {
  std::size_t found = m_cOutcome.out.find(text, m_nSeen);
  while (found == std::string::npos) {
    if (!read_some()) {
      return false;
    }
    found = m_cOutcome.out.find(text, m_nSeen);
  }
  m_nSeen = found + text.size();
  return true;
}

void Process::write(const std::string& text) const {
  if (::write(m_nIn, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
    throw std::runtime_error("the program reads no more");
  }
}

void Process::resize(unsigned short columns, unsigned short rows) const {
  const winsize size = {.ws_row = rows, .ws_col = columns, .ws_xpixel = 0, .ws_ypixel = 0};
  ::ioctl(m_nOut, TIOCSWINSZ, &size);
  send(SIGWINCH);  // which comes by itself only where the terminal controls the program
}

bool Process::wait_for_suspension() const {
  int wait_status = 0;
  return ::waitpid(m_nProcess, &wait_status, WUNTRACED) == m_nProcess && WIFSTOPPED(wait_status);
}

/// A process that has ended has no number any more, and -1 would be everybody.
void Process::send(int signal) const {
  if (m_nProcess > 0) {
    ::kill(m_nProcess, signal);
  }
}

Outcome Process::wait() {
  m_bReadsOutput = true;
  while (read_some()) {
  }
  int wait_status = 0;
  ::waitpid(std::exchange(m_nProcess, -1), &wait_status, 0);
  m_cOutcome.status = status_of(wait_status);
  return m_cOutcome;
}

Outcome run(const std::vector<std::string>& command, Terminals terminals) {
  return Process(command, terminals).wait();
}

}  // namespace hvk3::test
