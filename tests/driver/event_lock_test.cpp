#include "driver/event_lock.h"

#include <gtest/gtest.h>

#include <future>
#include <mutex>

#include "driver/support/mutex_watch.h"

namespace Osv::lx {
namespace {

using testing_support::is_held;

class EventLock : public testing::Test {
 protected:
  bool is_another_thread_inside() {
    return std::async(std::launch::async, [this] { return events.IsInside(); }).get();
  }

  CXMutex lock;
  CXEventLock events{lock};
};

/// The calling thread is inside two events, one within the other.
class InsideTwoEvents : public EventLock {
 protected:
  std::lock_guard<CXMutex> outer_frame{lock};
  CXEventLock::Inside outer{events};
  std::lock_guard<CXMutex> inner_frame{lock};
  CXEventLock::Inside inner{events};
};

TEST_F(EventLock, NobodyIsInsideWithoutAnEvent) {
  const std::lock_guard<CXMutex> frame(lock);
  EXPECT_FALSE(events.IsInside());
}

TEST_F(EventLock, AThreadIsInsideUntilTheLastOfItsEventsEnds) {
  const std::lock_guard<CXMutex> frame(lock);
  {
    const CXEventLock::Inside outer(events);
    { const CXEventLock::Inside inner(events); }
    EXPECT_TRUE(events.IsInside());
    EXPECT_FALSE(is_another_thread_inside());
  }
  EXPECT_FALSE(events.IsInside());
}

TEST_F(EventLock, APauseOutsideLeavesTheLockAlone) {
  const std::lock_guard<CXMutex> frame(lock);
  const CXEventLock::Pause pause(events);
  EXPECT_TRUE(is_held(lock));
}

TEST_F(InsideTwoEvents, APauseLetsGoOfTheLock) {
  const CXEventLock::Pause pause(events);
  EXPECT_FALSE(is_held(lock));
  EXPECT_FALSE(events.IsInside());
}

TEST_F(InsideTwoEvents, AnotherThreadMayHaveAnEventDuringAPause) {
  const CXEventLock::Pause pause(events);
  EXPECT_TRUE(std::async(std::launch::async, [this] {
                const std::lock_guard<CXMutex> frame(lock);
                const CXEventLock::Inside inside(events);
                return events.IsInside();
              }).get());
}

TEST_F(InsideTwoEvents, BehindAPauseTheLockIsHeldAsBefore) {
  { const CXEventLock::Pause pause(events); }
  EXPECT_TRUE(is_held(lock));
  EXPECT_TRUE(events.IsInside());
  lock.unlock();
  EXPECT_TRUE(is_held(lock));
  lock.lock();
}

}  // namespace
}  // namespace Osv::lx
