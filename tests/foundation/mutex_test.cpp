#include "foundation/mutex.h"

#include <gtest/gtest.h>

#include <future>
#include <mutex>
#include <type_traits>

namespace Osv {
namespace {

// Its one member is the system's mutex, which can be asked without waiting.
static_assert(std::is_standard_layout_v<CXMutex> && sizeof(CXMutex) == sizeof(pthread_mutex_t));

bool another_thread_can_lock(CXMutex& mutex) {
  return std::async(std::launch::async,
                    [handle = reinterpret_cast<pthread_mutex_t*>(&mutex)] {
                      const bool locked = pthread_mutex_trylock(handle) == 0;
                      if (locked) {
                        pthread_mutex_unlock(handle);
                      }
                      return locked;
                    })
      .get();
}

TEST(Mutex, WhileAThreadHoldsItNoOtherThreadDoes) {
  CXMutex mutex;
  {
    const std::lock_guard<CXMutex> lock(mutex);
    EXPECT_FALSE(another_thread_can_lock(mutex));
  }
  EXPECT_TRUE(another_thread_can_lock(mutex));
}

TEST(Mutex, AThreadThatHoldsItCanLockItAgainAndHoldsItUntilItsLastUnlock) {
  CXMutex mutex;
  mutex.lock();
  mutex.lock();
  mutex.unlock();
  EXPECT_FALSE(another_thread_can_lock(mutex));
  mutex.unlock();
  EXPECT_TRUE(another_thread_can_lock(mutex));
}

}  // namespace
}  // namespace Osv
