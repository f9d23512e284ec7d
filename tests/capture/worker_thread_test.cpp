#include "capture/worker_thread.h"

#include <gtest/gtest.h>
#include <sys/prctl.h>

#include <array>
#include <atomic>
#include <csignal>
#include <functional>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "capture/win32_thread.h"
#include "foundation/wait.h"

namespace Osv {
namespace {

/// Runs a function on its thread, with the attributes that a test asks for.
struct Worker : lx::CWin32Thread {
  using CXWorkerThread::kDefaultPriority;
  using CXWorkerThread::m_hThread;

  int Work() override { return work(); }
  unsigned long GetStackSize() const override { return stack_size; }
  int GetConcurrencyScope() const override { return scope; }
  int GetSchedPriority() const override { return priority; }

  std::function<int()> work = [] { return 0; };
  unsigned long stack_size = CXWorkerThread::GetStackSize();
  int scope = CXWorkerThread::GetConcurrencyScope();
  int priority = CXWorkerThread::GetSchedPriority();
};

unsigned long stack_size_of_this_thread() {
  pthread_attr_t attributes;
  std::size_t size = 0;
  pthread_getattr_np(pthread_self(), &attributes);
  pthread_attr_getstacksize(&attributes, &size);
  pthread_attr_destroy(&attributes);
  return size;
}

TEST(WorkerThread, StopOfAnObjectThatWasNeverStartedIs0) {
  Worker worker;
  EXPECT_EQ(worker.Stop(), 0);
  EXPECT_EQ(worker.m_hThread, pthread_t{});
}

TEST(WorkerThread, NoDerivedClassHasToSayThatThereIsNoThreadYet) {
  struct Plain : CXWorkerThread {
    using CXWorkerThread::m_hThread;
    int Work() override { return 0; }
  };
  EXPECT_EQ(Plain().m_hThread, pthread_t{});
}

TEST(WorkerThread, WorkRunsOnAThreadOfItsOwn) {
  Worker worker;
  std::thread::id id;
  worker.work = [&] {
    id = std::this_thread::get_id();
    return 0;
  };
  ASSERT_TRUE(worker.Start());
  worker.Stop();
  EXPECT_NE(id, std::thread::id());
  EXPECT_NE(id, std::this_thread::get_id());
}

TEST(WorkerThread, StopGivesWhatWorkReturned) {
  for (const int result : {7, -7, std::numeric_limits<int>::min()}) {
    Worker worker;
    worker.work = [result] { return result; };
    worker.Start();
    EXPECT_EQ(worker.Stop(), result);
  }
}

TEST(WorkerThread, StopMsgIsStop) {
  Worker worker;
  worker.work = [] { return 9; };
  worker.Start();
  EXPECT_EQ(worker.StopMsg(), 9);
}

TEST(WorkerThread, TheResultIsWidenedWithItsSign) {
  Worker worker;
  worker.work = [] { return -2; };
  EXPECT_EQ(reinterpret_cast<long>(CXWorkerThread::Run(static_cast<CXWorkerThread*>(&worker))),
            -2L);
}

TEST(WorkerThread, AnObjectCanBeStartedAgain) {
  Worker worker;
  int runs = 0;
  worker.work = [&] { return ++runs; };
  worker.Start();
  worker.Stop();
  EXPECT_NE(worker.m_hThread, pthread_t{}) << "stopping forgets nothing";
  worker.Start();
  EXPECT_EQ(worker.Stop(), 2);
}

TEST(WorkerThread, AThreadThatCannotBeCreatedLeavesNothingToStop) {
  Worker worker;
  worker.Start();
  worker.Stop();
  worker.stack_size = 1UL << 60;
  EXPECT_FALSE(worker.Start());
  EXPECT_EQ(worker.m_hThread, pthread_t{});
  EXPECT_EQ(worker.Stop(), 0);
}

TEST(WorkerThread, TheDefaultsAreOneMebibyteSystemScopeAndNoPriority) {
  const Worker worker;
  EXPECT_EQ(worker.stack_size, 0x100000U);
  EXPECT_EQ(worker.scope, 1);
  EXPECT_EQ(worker.priority, 0x7FFFFFFF);
}

TEST(WorkerThread, TheStackSizeIsAsAskedFor) {
  Worker worker;
  unsigned long size = 0;
  worker.stack_size = 0x2000000;  // above the system's default, which old stacks have
  worker.work = [&] {
    size = stack_size_of_this_thread();
    return 0;
  };
  worker.Start();
  worker.Stop();
  EXPECT_GE(size, 0x2000000U);
}

TEST(WorkerThread, AttributesThatTheSystemRefusesDoNotKeepTheThreadFromRunning) {
  Worker worker;
  worker.stack_size = 1;
  worker.scope = 0;
  worker.priority = 5;
  worker.work = [] { return 3; };
  ASSERT_TRUE(worker.Start());
  EXPECT_EQ(worker.Stop(), 3);
}

TEST(WorkerThread, AStackSizeOf0MeansTheSystemsDefault) {
  Worker worker;
  unsigned long size = 0;
  worker.stack_size = 0;
  worker.work = [&] {
    size = stack_size_of_this_thread();
    return 0;
  };
  worker.Start();
  worker.Stop();
  EXPECT_GT(size, 0x100000U);
}

TEST(WorkerThread, KillSendsSignal15ToTheThread) {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &set, nullptr);
  Worker worker;
  worker.work = [&] {
    int signal = 0;
    sigwait(&set, &signal);
    return signal;
  };
  worker.Start();
  EXPECT_TRUE(worker.Kill());
  EXPECT_EQ(worker.Stop(), 15);
  pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

TEST(WorkerThread, KillOfAnObjectThatWasNeverStartedIsHarmless) { EXPECT_TRUE(Worker().Kill()); }

TEST(WorkerThread, SetNameNamesTheCallingThread) {
  Worker worker;
  std::string name;
  worker.work = [&] {
    CXWorkerThread::SetName("frames");
    std::array<char, 16> text{};
    prctl(PR_GET_NAME, text.data());
    name = text.data();
    return 0;
  };
  worker.Start();
  worker.Stop();
  EXPECT_EQ(name, "frames");
}

TEST(WorkerThread, SleepMakesOneWaitOfTheTimeAskedForAndAlsoOneOf0) {
  static std::vector<int> waits;
  waits.clear();
  const WaitFunction before = ExchangeWaitFunction([](eWait kind, int milliseconds) {
    waits.push_back(kind == eWait::Nanosleep ? milliseconds : -1);
  });
  CXWorkerThread::Sleep(1500);
  CXWorkerThread::Sleep(0);
  ExchangeWaitFunction(before);
  EXPECT_EQ(waits, (std::vector<int>{1500, 0}));
}

TEST(WorkerThread, AWaitOf1500MillisecondsIsOneSecondAnd500Milliseconds) {
  const timespec duration = ToTimespec(1500);
  EXPECT_EQ(duration.tv_sec, 1);
  EXPECT_EQ(duration.tv_nsec, 500000000);
}

}  // namespace
}  // namespace Osv
