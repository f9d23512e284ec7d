#include "foundation/mutex.h"

#include "foundation/exceptions.h"

namespace Osv {

CXMutex::CXMutex() : m_hMutex() {
  pthread_mutexattr_t attributes;
  if (pthread_mutexattr_init(&attributes) != 0) {
    throw CXSystemException();
  }
  if (pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE) != 0) {
    const CXSystemException failure;
    pthread_mutexattr_destroy(&attributes);
    throw failure;
  }
  const int result = pthread_mutex_init(&m_hMutex, &attributes);
  const CXSystemException failure;
  pthread_mutexattr_destroy(&attributes);
  if (result != 0) {
    throw failure;
  }
}

CXMutex::~CXMutex() { pthread_mutex_destroy(&m_hMutex); }

}  // namespace Osv
