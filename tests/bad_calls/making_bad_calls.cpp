#include "bad_calls/making_bad_calls.h"

namespace Osv::bad_calls {
namespace {

using ::testing::Each;
using ::testing::Eq;

constexpr unsigned char kUntouched = 0xA5;
constexpr std::size_t kGuard = 16;  // bytes behind the room that a client says it has

/// Bytes that a client has room for. A size that no memory has is a lie.
std::size_t room_of(const BadCall& call) {
  constexpr unsigned long kMost = 1024;
  const unsigned long units = call.size <= kMost ? call.size : call.answer.size.value_or(0);
  return units * call.unit;
}

Answer answer_in(const Situation& situation, const BadCall& call) {
  switch (situation.scanner) {
    case eScanner::Gone:
      return call.without_scanner.value_or(call.answer);
    case eScanner::Replugged:
      return call.with_dead_handle.value_or(call.answer);
    default:
      return call.answer;
  }
}

}  // namespace

void MakingBadCalls::make_all(const BadCalls& calls, const Situation& situation, bool end_events) {
  bool entered = false;
  for (const BadCall& call : calls) {
    if (!entered) {
      enter(situation);
      recorder.clear();
    }
    SCOPED_TRACE(call.what);
    make(call, situation);
    if (HasFatalFailure()) {
      return;  // there is no situation for the rows behind it
    }
    entered = !call.closes && !(call.opens && situation.anew);
  }
  expect_a_capture(situation, !end_events);
}

void MakingBadCalls::make(const BadCall& call, const Situation& situation) {
  const Answer answer = answer_in(situation, call);
  Hands hands = hands_for(call, *grabber);
  EXPECT_EQ(plugin.frame_info()(0, 0, 77, &hands.level), 0x10000039U);  // stores kTextBefore
  const State before = state();
  EXPECT_EQ(call.call(hands), answer.result);
  EXPECT_EQ(last_text(), answer.text == kTextStays ? kTextBefore : answer.text);
  EXPECT_EQ(hands.size, answer.size.value_or(call.size));
  expect_untouched(hands, answer.result == 0 ? answer.size.value_or(0) * call.unit : 0);
  if (!call.closes) {
    expect_to_go_on(situation);
  }
  expect_state(before, call, situation);
  expect_callbacks(situation.frames, call.closes && (situation.frames || situation.frozen));
}

// The frame that is being fetched at the moment of a freeze is still delivered.
void MakingBadCalls::expect_to_go_on(const Situation& situation) {
  if (situation.frames) {
    ASSERT_TRUE(recorder.wait_for_more(eEvent::Live, 2));
  }
  if (situation.frozen) {
    sleeps.forget();
    ASSERT_TRUE(await_freeze_polls(2));
  }
}

Hands MakingBadCalls::hands_for(const BadCall& call, lx::ClFramegrabber& receiver) const {
  return {receiver, plugin, std::vector<unsigned char>(room_of(call) + kGuard, kUntouched),
          call.size};
}

void MakingBadCalls::expect_untouched(const Hands& hands, std::size_t written) {
  const std::vector<unsigned char> rest(hands.room.begin() + static_cast<std::ptrdiff_t>(written),
                                        hands.room.end());
  EXPECT_THAT(rest, Each(Eq(kUntouched)));
  EXPECT_EQ(hands.value, 7U);
  EXPECT_EQ(hands.wide_value, 7U);
  EXPECT_EQ(hands.level, 7);
  EXPECT_EQ(hands.image, nullptr);
}

void MakingBadCalls::expect_state(State before, const BadCall& call, const Situation& situation) {
  const State after = state();
  if (call.closes) {
    before.device.open_handles = 0;
    before.device.green = 0;
    before.device.red = 0;
    before.properties.clear();
  }
  const bool opens = call.opens && situation.scanner == eScanner::There;
  if (opens && before.device.open_handles == 0) {
    EXPECT_EQ(after.properties, std::vector<unsigned int>({1, 0, 0, 0, 0, 0, 1}));
    EXPECT_EQ(after.device.open_handles, 1U);
    before.device.open_handles = 1;
    before.device.options = after.device.options;
    before.properties = after.properties;
  }
  EXPECT_EQ(after, before);
}

void MakingBadCalls::expect_callbacks(bool frames, bool end) {
  EXPECT_EQ(recorder.count(eEvent::Stop), end ? 1U : 0U);
  for (const client::Event& event : recorder.all()) {
    EXPECT_TRUE(event.kind == eEvent::Stop || (event.kind == eEvent::Live && frames)) << event.text;
  }
  EXPECT_EQ(events, 0);
  recorder.clear();
}

}  // namespace Osv::bad_calls
