#include "hvk3/console.h"

#include <unistd.h>

#include <cerrno>
#include <iostream>

namespace hvk3 {

Console::Console(bool verbose) : m_bVerbose(verbose), m_bTerminal(::isatty(STDERR_FILENO) != 0) {}

Console::~Console() { clear_progress(); }

void Console::detail(const std::string& text) {
  if (m_bVerbose) {
    message(text);
  }
}

void Console::progress(const std::string& text) {
  if (m_bTerminal) {
    clear_progress();
    std::cerr << text << std::flush;
    m_bProgress = true;
  }
}

void Console::message(const std::string& text) {
  clear_progress();
  std::cerr << program_invocation_short_name << ": " << text << std::endl;
}

void Console::clear_progress() {
  if (m_bProgress) {
    std::cerr << "\r\x1b[K" << std::flush;
    m_bProgress = false;
  }
}

}  // namespace hvk3
