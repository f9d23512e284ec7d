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

void MakingBadCalls::make_all(const BadCalls& calls, const Situation& situation) {
  for (const BadCall& call : calls) {
    const bool first = &call == &calls.front();
    if (first || situation.anew) {
      enter(situation);
      recorder.clear();
    }
    SCOPED_TRACE(call.what);
    make(call, situation);
  }
  if (situation.frames) {
    EXPECT_TRUE(recorder.wait_for_more(eEvent::Live, 2));
  }
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
  expect_state(before, call.opens && situation.scanner == eScanner::There);
  expect_callbacks(situation.frames);
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

void MakingBadCalls::expect_state(State before, bool opens) {
  State after = state();
  if (opens && before.device.open_handles == 0) {
    EXPECT_EQ(after.properties, std::vector<unsigned int>({1, 0, 0, 0, 0, 0, 1}));
    EXPECT_EQ(after.device.open_handles, 1U);
    before.device.open_handles = 1;
    before.device.options = after.device.options;
    before.properties = after.properties;
  }
  EXPECT_EQ(after, before);
}

void MakingBadCalls::expect_callbacks(bool frames) {
  for (const client::Event& event : recorder.all()) {
    EXPECT_TRUE(event.kind == eEvent::Live && frames) << event.text;
  }
  recorder.clear();
}

}  // namespace Osv::bad_calls
