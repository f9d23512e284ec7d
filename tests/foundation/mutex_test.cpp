#include "foundation/mutex.h"

#include <gtest/gtest.h>

#include <mutex>

namespace Osv {
namespace {

TEST(Mutex, AThreadThatHoldsItCanLockItAgain) {
  CXMutex mutex;
  const std::lock_guard<CXMutex> outer(mutex);
  const std::lock_guard<CXMutex> inner(mutex);
  SUCCEED();
}

}  // namespace
}  // namespace Osv
