#include "faults/deadline.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace Osv::faults {
namespace {

// Far beyond any run, on any machine and under any sanitizer. Counted in ticks: a process that is
// paused for a while is not to be taken for one that hangs.
constexpr std::chrono::seconds kTick{1};
constexpr int kPatience = 60;

}  // namespace

Deadline::Deadline() : m_cThread([this] { watch(); }) {}

Deadline::~Deadline() {
  {
    const std::lock_guard<std::mutex> lock(m_cLock);
    m_bGone = true;
    m_cChanged.notify_all();
  }
  m_cThread.join();
}

void Deadline::begin(const std::string& name) {
  const std::lock_guard<std::mutex> lock(m_cLock);
  m_sName = name;
  m_bRunning = true;
  ++m_nBegun;
  m_cChanged.notify_all();
}

void Deadline::end() {
  const std::lock_guard<std::mutex> lock(m_cLock);
  m_bRunning = false;
  m_cChanged.notify_all();
}

void Deadline::watch() {
  std::unique_lock<std::mutex> lock(m_cLock);
  while (!m_bGone) {
    if (!m_bRunning) {
      m_cChanged.wait(lock);
      continue;
    }
    const unsigned long begun = m_nBegun;
    const auto is_over = [&] { return m_bGone || !m_bRunning || m_nBegun != begun; };
    int ticks = 0;
    while (ticks < kPatience && !m_cChanged.wait_for(lock, kTick, is_over)) {
      ++ticks;
    }
    if (ticks == kPatience) {
      std::fprintf(stderr, "hangs: %s\n", m_sName.c_str());
      std::abort();
    }
  }
}

}  // namespace Osv::faults
