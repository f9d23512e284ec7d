#include "hvk3/script_feed.h"

#include <unistd.h>

#include <array>
#include <exception>

namespace hvk3 {

ScriptFeed::ScriptFeed(Osv::simulator::Bench& bench, Console& console)
    : m_cBench(bench), m_cConsole(console), m_cThread([this] { read_all(); }) {}

ScriptFeed::~ScriptFeed() {
  m_cEnd.notify();
  m_cThread.join();
}

void ScriptFeed::read_all() {
  while (m_cEnd.wait_for_input(STDIN_FILENO)) {
    if (!read_some()) {
      run(m_sPending);  // a last line without an end
      return;
    }
    run_lines();
  }
}

/// @return false at the end of the input
bool ScriptFeed::read_some() {
  std::array<char, 4096> bytes = {};
  const ssize_t count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
  if (count <= 0) {
    return false;
  }
  m_sPending.append(bytes.data(), static_cast<std::size_t>(count));
  return true;
}

void ScriptFeed::run_lines() {
  for (std::size_t end = m_sPending.find('\n'); end != std::string::npos;
       end = m_sPending.find('\n')) {
    run(m_sPending.substr(0, end));
    m_sPending.erase(0, end + 1);
  }
}

void ScriptFeed::run(const std::string& line) {
  try {
    if (const std::string answer = m_cBench.run(line); !answer.empty()) {
      m_cConsole.message("script: " + answer);
    }
  } catch (const std::exception& failure) {
    m_cConsole.message(std::string("script: ") + failure.what());
  }
}

}  // namespace hvk3
