#include "foundation/system_failures.h"

#include <dlfcn.h>
#include <pthread.h>

#include <cerrno>
#include <cstdio>
#include <new>

namespace Osv::testing_support {
namespace {

thread_local eFailing t_failing = eFailing::Nothing;
thread_local int t_errno = 0;
thread_local int t_spared = 0;
thread_local int t_attributes = 0;

bool fails(eFailing what) {
  if (t_failing == what && t_spared-- <= 0) {
    errno = t_errno;
    return true;
  }
  return false;
}

template <typename Function>
Function real(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

}  // namespace

FailingSystem::FailingSystem(eFailing what, int errorNumber, int spared) {
  t_failing = what;
  t_spared = spared;
  t_errno = errorNumber;
  t_attributes = 0;
}

FailingSystem::~FailingSystem() { t_failing = eFailing::Nothing; }

int FailingSystem::attributes_alive() const { return t_attributes; }

}  // namespace Osv::testing_support

using Osv::testing_support::eFailing;
using Osv::testing_support::fails;
using Osv::testing_support::real;
using Osv::testing_support::t_attributes;

void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  if (fails(eFailing::ArrayNew)) {
    return nullptr;
  }
  return ::operator new[](size);
}

extern "C" {

__attribute__((visibility("default"))) int pthread_mutexattr_init(
    pthread_mutexattr_t* attributes) noexcept {
  if (fails(eFailing::MutexAttributes)) {
    return ENOMEM;
  }
  ++t_attributes;
  return real<int (*)(pthread_mutexattr_t*)>("pthread_mutexattr_init")(attributes);
}

__attribute__((visibility("default"))) int pthread_mutexattr_destroy(
    pthread_mutexattr_t* attributes) noexcept {
  --t_attributes;
  errno = 0;
  return real<int (*)(pthread_mutexattr_t*)>("pthread_mutexattr_destroy")(attributes);
}

__attribute__((visibility("default"))) int pthread_mutexattr_settype(
    pthread_mutexattr_t* attributes, int type) noexcept {
  if (fails(eFailing::MutexType)) {
    return EINVAL;
  }
  return real<int (*)(pthread_mutexattr_t*, int)>("pthread_mutexattr_settype")(attributes, type);
}

__attribute__((visibility("default"))) int pthread_mutex_init(
    pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes) noexcept {
  if (fails(eFailing::MutexInit)) {
    return EAGAIN;
  }
  return real<int (*)(pthread_mutex_t*, const pthread_mutexattr_t*)>("pthread_mutex_init")(
      mutex, attributes);
}

__attribute__((visibility("default"))) int fclose(FILE* file) {
  const int closed = real<int (*)(FILE*)>("fclose")(file);
  return fails(eFailing::FileClose) ? EOF : closed;
}

}  // extern "C"
