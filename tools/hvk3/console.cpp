#include "hvk3/console.h"

#include <unistd.h>

#include <cerrno>
#include <iostream>
#include <utility>

namespace hvk3 {

Console::Console(bool verbose) : m_bVerbose(verbose), m_bTerminal(::isatty(STDERR_FILENO) != 0) {}

Console::~Console() { clear_progress(); }

Console::Pause::Pause(Console& console) : m_cConsole(console) {
  const std::lock_guard<std::mutex> lock(m_cConsole.m_cLock);
  m_cConsole.clear_progress();
  m_cConsole.m_bPaused = m_cConsole.m_bTerminal;
}

Console::Pause::~Pause() {
  const std::lock_guard<std::mutex> lock(m_cConsole.m_cLock);
  m_cConsole.m_bPaused = false;
  std::cerr << std::exchange(m_cConsole.m_sKept, "") << std::flush;
}

void Console::detail(const std::string& text) {
  if (m_bVerbose) {
    message(text);
  }
}

void Console::progress(const std::string& text) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  if (m_bTerminal && !m_bPaused) {
    clear_progress();
    std::cerr << text << std::flush;
    m_bProgress = true;
  }
}

void Console::message(const std::string& text) {
  const std::string line = program_invocation_short_name + (": " + text) + '\n';
  const std::lock_guard<std::mutex> lock(m_cLock);
  if (m_bPaused) {
    m_sKept += line;
    return;
  }
  clear_progress();
  std::cerr << line << std::flush;
}

void Console::clear_progress() {
  if (m_bProgress) {
    std::cerr << "\r\x1b[K" << std::flush;
    m_bProgress = false;
  }
}

}  // namespace hvk3
