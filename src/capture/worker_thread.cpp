#include "capture/worker_thread.h"

#include <sched.h>
#include <sys/prctl.h>

#include <csignal>
#include <cstdint>

#include "foundation/wait.h"

namespace Osv {
namespace {

constexpr int kSystemScope = 1;

/// What the object asks of its thread. The system may refuse any of it; the thread then starts with
/// its defaults.
void apply(pthread_attr_t& attributes, const CXWorkerThread& thread, unsigned long stack_size,
           bool has_priority, int priority) {
  pthread_attr_setscope(&attributes, thread.GetConcurrencyScope() == kSystemScope
                                         ? PTHREAD_SCOPE_SYSTEM
                                         : PTHREAD_SCOPE_PROCESS);
  if (stack_size != 0) {
    pthread_attr_setstacksize(&attributes, stack_size);
  }
  sched_param parameters{};
  if (has_priority && pthread_attr_getschedparam(&attributes, &parameters) == 0) {
    parameters.sched_priority = priority;
    pthread_attr_setschedparam(&attributes, &parameters);
  }
}

}  // namespace

bool CXWorkerThread::Start() {
  const unsigned long stack_size = GetStackSize();
  const int priority = GetSchedPriority();
  m_hThread = 0;
  pthread_attr_t attributes;
  if (pthread_attr_init(&attributes) != 0) {
    return false;
  }
  apply(attributes, *this, stack_size, priority != kDefaultPriority, priority);
  const bool started = pthread_create(&m_hThread, &attributes, &CXWorkerThread::Run, this) == 0;
  pthread_attr_destroy(&attributes);
  if (!started) {
    m_hThread = 0;
  }
  return started;
}

int CXWorkerThread::Stop() {
  if (m_hThread == 0) {
    return 0;
  }
  void* result = nullptr;
  pthread_join(m_hThread, &result);
  return static_cast<int>(reinterpret_cast<std::intptr_t>(result));
}

bool CXWorkerThread::Kill() {
  if (m_hThread != 0) {
    pthread_kill(m_hThread, SIGTERM);  // NOLINT(bugprone-bad-signal-to-kill-thread): as documented
  }
  return true;
}

void* CXWorkerThread::Run(void* object) {
  const std::intptr_t result = static_cast<CXWorkerThread*>(object)->Work();
  return reinterpret_cast<void*>(result);
}

void CXWorkerThread::SetName(const char* name) { prctl(PR_SET_NAME, name); }

void CXWorkerThread::Relinquish() { sched_yield(); }

void CXWorkerThread::Sleep(int milliseconds) { Wait(eWait::Nanosleep, milliseconds); }

}  // namespace Osv
