#include "faults/deadline.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace Osv::faults {
namespace {

// Far beyond any run, on any machine and under any sanitizer.
constexpr std::chrono::seconds kPatience{60};

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
    const bool over = m_cChanged.wait_for(
        lock, kPatience, [&] { return m_bGone || !m_bRunning || m_nBegun != begun; });
    if (!over) {
      std::fprintf(stderr, "hangs: %s\n", m_sName.c_str());
      std::abort();
    }
  }
}

}  // namespace Osv::faults
