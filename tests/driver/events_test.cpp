#include "driver/events.h"

#include <gtest/gtest.h>

#include <thread>

#include "driver/driver_fixture.h"

namespace Osv::lx {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// What a client's callback was called with.
struct Event {
  int handle = 0;
  unsigned int channel = 0;
  unsigned int grabber = 0;
  unsigned int type = 99;
  std::thread::id thread;
  int count = 0;

  static void note(int handle, unsigned int channel, eFGs grabber, unsigned int type, void* user) {
    auto& event = *static_cast<Event*>(user);
    event = {handle, channel, grabber, type, std::this_thread::get_id(), event.count + 1};
  }
};

class Events : public LoggedFixture {
 protected:
  Events() { bench.clear_journal(); }

  ClXEvents events;
  Event event;
};

TEST_F(Events, WithoutACallbackFiringDoesNothing) {
  events.Fire(1, eFG_HVK3_FakeFinger);
  EXPECT_THAT(log_lines(), IsEmpty());
}

TEST_F(Events, FiringCallsBackWithHandleChannelNumber19AndType) {
  events.Set(42, &Event::note, &event);
  events.Fire(1, eFG_HVK3_FakeFinger);
  EXPECT_EQ(event.handle, 42);
  EXPECT_EQ(event.channel, 1U);
  EXPECT_EQ(event.grabber, 19U);
  EXPECT_EQ(event.type, 0U);
}

TEST_F(Events, FiringCallsBackOnTheCallingThread) {
  events.Set(42, &Event::note, &event);
  std::thread::id firing;
  std::thread([&] {
    firing = std::this_thread::get_id();
    events.Fire(1, eFG_HVK3_FakeFinger);
  }).join();
  EXPECT_EQ(event.thread, firing);
}

TEST_F(Events, FiringWritesOneTraceLine) {
  events.Set(42, &Event::note, &event);
  events.Fire(3, eFG_HVK3_FakeFinger);
  EXPECT_THAT(
      log_lines(),
      ElementsAre(
          "7 KR9 scanner. Occurring of KR9-scanner event. Handle: 42, channel: 3, Type: 0"));
}

TEST_F(Events, ANullCallbackSwitchesEventsOff) {
  events.Set(42, &Event::note, &event);
  events.Set(42, nullptr, &event);
  events.Fire(1, eFG_HVK3_FakeFinger);
  EXPECT_EQ(event.count, 0);
}

TEST_F(Events, ACallbackMayReplaceTheCallback) {
  events.Set(
      1,
      [](int, unsigned int, eFGs, unsigned int, void* user) {
        static_cast<ClXEvents*>(user)->Set(0, nullptr, nullptr);
      },
      &events);
  events.Fire(1, eFG_HVK3_FakeFinger);
  bench.clear_journal();
  events.Fire(1, eFG_HVK3_FakeFinger);
  EXPECT_THAT(log_lines(), IsEmpty());
}

}  // namespace
}  // namespace Osv::lx
