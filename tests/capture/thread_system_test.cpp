#include "capture/thread_system.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "capture/win32_thread.h"

namespace Osv {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

/// Ends at once, with the attributes that a test asks for.
struct Worker : lx::CWin32Thread {
  using CXWorkerThread::m_hThread;

  int Work() override { return 3; }
  unsigned long GetStackSize() const override { return stack_size; }
  int GetConcurrencyScope() const override { return scope; }
  int GetSchedPriority() const override { return priority; }

  unsigned long stack_size = CXWorkerThread::GetStackSize();
  int scope = CXWorkerThread::GetConcurrencyScope();
  int priority = CXWorkerThread::GetSchedPriority();
};

struct ThreadAttributes : testing::Test {
  /// What a start asks of the system.
  std::vector<std::string> calls_of_start() {
    EXPECT_TRUE(worker.Start());
    std::vector<std::string> calls = system.calls();
    EXPECT_EQ(worker.Stop(), 3);
    return calls;
  }

  test::ThreadSystem system;
  Worker worker;
};

TEST_F(ThreadAttributes, AreSystemScopeAndOneMebibyteAndAreDestroyed) {
  EXPECT_THAT(calls_of_start(),
              ElementsAre("pthread_attr_init", "pthread_attr_setscope 0",
                          "pthread_attr_setstacksize 1048576", "pthread_attr_destroy"));
}

TEST_F(ThreadAttributes, HaveProcessScopeForAnyNumberBut1) {
  for (const int scope : {0, 2, -1}) {
    worker.scope = scope;
    EXPECT_THAT(calls_of_start(), Contains("pthread_attr_setscope 1"));
    system.forget();
  }
}

TEST_F(ThreadAttributes, HaveNoStackSizeFor0) {
  worker.stack_size = 0;
  EXPECT_THAT(calls_of_start(),
              ElementsAre("pthread_attr_init", "pthread_attr_setscope 0", "pthread_attr_destroy"));
}

TEST_F(ThreadAttributes, HaveThePriorityWrittenIntoTheParametersThatWereThere) {
  worker.priority = 0;
  EXPECT_THAT(calls_of_start(),
              ElementsAre("pthread_attr_init", "pthread_attr_setscope 0",
                          "pthread_attr_setstacksize 1048576", "pthread_attr_getschedparam",
                          "pthread_attr_setschedparam 0", "pthread_attr_destroy"));
}

TEST_F(ThreadAttributes, KeepTheirPriorityWhenTheParametersCannotBeRead) {
  worker.priority = 5;
  system.fail("pthread_attr_getschedparam");
  EXPECT_THAT(calls_of_start(), ElementsAre("pthread_attr_init", "pthread_attr_setscope 0",
                                            "pthread_attr_setstacksize 1048576",
                                            "pthread_attr_getschedparam", "pthread_attr_destroy"));
}

TEST_F(ThreadAttributes, ThatCannotBeSetUpMeanNoThread) {
  worker.m_hThread = pthread_self();
  system.fail("pthread_attr_init");
  EXPECT_FALSE(worker.Start());
  EXPECT_EQ(worker.m_hThread, pthread_t{});
  EXPECT_THAT(system.calls(), ElementsAre("pthread_attr_init"));
  EXPECT_EQ(worker.Stop(), 0);
}

TEST_F(ThreadAttributes, AreDestroyedAlsoWhenTheThreadCannotBeCreated) {
  worker.stack_size = 1UL << 60;
  EXPECT_FALSE(worker.Start());
  EXPECT_EQ(system.calls().back(), "pthread_attr_destroy");
}

TEST(Relinquishing, GivesUpTheProcessorOnce) {
  const test::ThreadSystem system;
  EXPECT_THAT(system.calls(), IsEmpty());
  CXWorkerThread::Relinquish();
  EXPECT_THAT(system.calls(), ElementsAre("sched_yield"));
}

}  // namespace
}  // namespace Osv
