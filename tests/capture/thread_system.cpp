#include "capture/thread_system.h"

#include <dlfcn.h>
#include <pthread.h>
#include <sched.h>

#include <cerrno>

namespace Osv::test {

struct ThreadSystem::Record {
  std::string failing;
  std::vector<std::string> calls;
};

namespace {

thread_local ThreadSystem::Record* t_pRecord = nullptr;

void note(const std::string& call) {
  if (t_pRecord != nullptr) {
    t_pRecord->calls.push_back(call);
  }
}

bool fails(const char* function) { return t_pRecord != nullptr && t_pRecord->failing == function; }

template <typename... Arguments>
int forward(const char* function, Arguments... arguments) {
  if (fails(function)) {
    return ENOMEM;
  }
  using Function = int (*)(Arguments...);
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, function))(arguments...);
}

}  // namespace

ThreadSystem::ThreadSystem() : m_pRecord(std::make_unique<Record>()) {
  t_pRecord = m_pRecord.get();
}

ThreadSystem::~ThreadSystem() { t_pRecord = nullptr; }

void ThreadSystem::fail(const std::string& function) { m_pRecord->failing = function; }

void ThreadSystem::forget() { m_pRecord->calls.clear(); }

std::vector<std::string> ThreadSystem::calls() const { return m_pRecord->calls; }

}  // namespace Osv::test

using Osv::test::forward;
using Osv::test::note;

extern "C" {

__attribute__((visibility("default"))) int pthread_attr_init(pthread_attr_t* attributes) noexcept {
  note("pthread_attr_init");
  return forward("pthread_attr_init", attributes);
}

__attribute__((visibility("default"))) int pthread_attr_destroy(
    pthread_attr_t* attributes) noexcept {
  note("pthread_attr_destroy");
  return forward("pthread_attr_destroy", attributes);
}

__attribute__((visibility("default"))) int pthread_attr_setscope(pthread_attr_t* attributes,
                                                                 int scope) noexcept {
  note("pthread_attr_setscope " + std::to_string(scope));
  return forward("pthread_attr_setscope", attributes, scope);
}

__attribute__((visibility("default"))) int pthread_attr_setstacksize(pthread_attr_t* attributes,
                                                                     std::size_t size) noexcept {
  note("pthread_attr_setstacksize " + std::to_string(size));
  return forward("pthread_attr_setstacksize", attributes, size);
}

__attribute__((visibility("default"))) int pthread_attr_getschedparam(
    const pthread_attr_t* attributes, sched_param* parameters) noexcept {
  note("pthread_attr_getschedparam");
  return forward("pthread_attr_getschedparam", attributes, parameters);
}

__attribute__((visibility("default"))) int pthread_attr_setschedparam(
    pthread_attr_t* attributes, const sched_param* parameters) noexcept {
  note("pthread_attr_setschedparam " + std::to_string(parameters->sched_priority));
  return forward("pthread_attr_setschedparam", attributes, parameters);
}

__attribute__((visibility("default"))) int sched_yield() noexcept {
  note("sched_yield");
  return forward("sched_yield");
}

}  // extern "C"
