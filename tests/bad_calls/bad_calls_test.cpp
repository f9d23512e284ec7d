#include <tuple>

#include "bad_calls/situations.h"

namespace Osv::bad_calls {
namespace {

using ::testing::Each;
using ::testing::Eq;

constexpr unsigned char kUntouched = 0xA5;
constexpr std::size_t kGuard = 16;  // bytes behind the room that a client says it has

/// One table of calls.
struct Table {
  const char* name;
  BadCalls (*calls)();
};

std::ostream& operator<<(std::ostream& out, const Table& table) { return out << table.name; }

constexpr Table kTables[] = {{"Texts", &texts},
                             {"Lists", &lists},
                             {"Devices", &devices},
                             {"Settings", &settings},
                             {"Images", &images},
                             {"Captures", &captures},
                             {"Properties", &properties},
                             {"MissingOperations", &operations_that_are_missing},
                             {"FeatureReads", &feature_reads},
                             {"FeatureWrites", &feature_writes}};

constexpr Situation kBeforeOpening = {"BeforeTheFirstOpening",
                                      &InSituation::before_the_first_opening, true, false, true};
constexpr Situation kNoScanner = {"WithoutAScanner", &InSituation::without_a_scanner, false};
constexpr Situation kDisconnected = {"AfterADisconnection", &InSituation::after_a_disconnection,
                                     false};
constexpr Situation kDeadHandle = {"WithADeadHandle", &InSituation::with_a_dead_handle};
constexpr Situation kOpenSituations[] = {
    {"WhileOpen", &InSituation::while_open},
    {"DuringCapture", &InSituation::during_capture, true, true},
    {"WhileFrozen", &InSituation::while_frozen},
    {"AfterAnErrorAndNoStop", &InSituation::after_an_error_and_no_stop}};

/// Bytes that a client has room for. A size that no memory has is a lie.
std::size_t room_of(const BadCall& call) {
  constexpr unsigned long kMost = 1024;
  const unsigned long units = call.size <= kMost ? call.size : call.answer.size.value_or(0);
  return units * call.unit;
}

class MakingBadCalls : public InSituation {
 protected:
  /// Makes a call, and looks at all that it answers and at all that it leaves alone.
  void make(const BadCall& call, const Situation& situation) {
    const Answer answer = situation.scanner || !call.without_scanner.has_value()
                              ? call.answer
                              : *call.without_scanner;
    Hands hands{*grabber, plugin, std::vector<unsigned char>(room_of(call) + kGuard, kUntouched),
                call.size};
    EXPECT_EQ(plugin.frame_info()(0, 0, 77, &hands.level), 0x10000039U);  // stores kTextBefore
    const State before = state();
    EXPECT_EQ(call.call(hands), answer.result);
    EXPECT_EQ(last_text(), answer.text == kTextStays ? kTextBefore : answer.text);
    EXPECT_EQ(hands.size, answer.size.value_or(call.size));
    expect_untouched(hands, answer.result == 0 ? answer.size.value_or(0) * call.unit : 0);
    expect_state(before, call.opens && situation.scanner);
    expect_callbacks(situation.frames);
  }

  /// Only the first bytes of the room were written to.
  static void expect_untouched(const Hands& hands, std::size_t written) {
    const std::vector<unsigned char> rest(hands.room.begin() + static_cast<std::ptrdiff_t>(written),
                                          hands.room.end());
    EXPECT_THAT(rest, Each(Eq(kUntouched)));
    EXPECT_EQ(hands.value, 7U);
    EXPECT_EQ(hands.wide_value, 7U);
    EXPECT_EQ(hands.level, 7);
    EXPECT_EQ(hands.image, nullptr);
  }

  void expect_state(State before, bool opens) {
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

  /// Nothing came but frames, where there is capture.
  void expect_callbacks(bool frames) {
    for (const client::Event& event : recorder.all()) {
      EXPECT_TRUE(event.kind == eEvent::Live && frames) << event.text;
    }
    recorder.clear();
  }

  void make_all(const BadCalls& calls, const Situation& situation) {
    for (const BadCall& call : calls) {
      const bool first = &call == &calls.front();
      if (situation.anew && call.variant) {
        continue;
      }
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
};

using Case = std::tuple<Table, Situation>;

std::string name_of(const ::testing::TestParamInfo<Case>& info) {
  return std::string(std::get<0>(info.param).name) + std::get<1>(info.param).name;
}

class ABadCall : public MakingBadCalls, public ::testing::WithParamInterface<Case> {};

TEST_P(ABadCall, IsAnsweredAsToldAndChangesNothing) {
  const auto& [table, situation] = GetParam();
  make_all(table.calls(), situation);
}

INSTANTIATE_TEST_SUITE_P(Any, ABadCall,
                         ::testing::Combine(::testing::ValuesIn(kTables),
                                            ::testing::ValuesIn(kOpenSituations)),
                         name_of);

INSTANTIATE_TEST_SUITE_P(AnyElse, ABadCall,
                         ::testing::Combine(::testing::ValuesIn(kTables),
                                            ::testing::Values(kBeforeOpening, kNoScanner,
                                                              kDisconnected)),
                         name_of);

// The description is asked of the scanner, whose handle is dead: that is no bad call.
INSTANTIATE_TEST_SUITE_P(AnyBut, ABadCall,
                         ::testing::Combine(::testing::ValuesIn(kTables + 1, std::end(kTables)),
                                            ::testing::Values(kDeadHandle)),
                         name_of);

class AGoodCall : public MakingBadCalls, public ::testing::WithParamInterface<Situation> {};

TEST_P(AGoodCall, ThatNeedsAScannerIsNumber2WithoutOneAndChangesNothing) {
  make_all(calls_that_need_a_scanner(), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Any, AGoodCall, ::testing::Values(kNoScanner, kDisconnected),
                         [](const auto& situation) { return situation.param.name; });

/// A scanner whose protected bytes are under a code that the client doesn't have.
class AWrongCode : public InSituation, public ::testing::WithParamInterface<Situation> {
 protected:
  AWrongCode() {
    bench.set_authorization_code(0, {1, 2, 3, 4, 5, 6, 7});
    bench.set_secret(0, {7, 6, 5, 4, 3, 2, 1});
  }
};

TEST_P(AWrongCode, IsNumber83AndChangesNothing) {
  constexpr unsigned long kWrongCode = 0x10000053;
  enter(GetParam());
  const std::array<unsigned char, 14> offered = {1, 2, 3, 4, 5, 6, 8, 9, 9, 9, 9, 9, 9, 9};
  std::array<unsigned char, 14> bytes = offered;
  osvlx3_feature feature{eFeatureSecretBytes, 0, bytes.size(), 1, bytes.data()};
  const State before = state();
  for (const unsigned long result :
       {plugin.get_feature()(kChannel, &feature), plugin.set_feature()(kChannel, &feature)}) {
    EXPECT_EQ(result, kWrongCode);
    EXPECT_EQ(last_text(), "Invalid authorization code");
    EXPECT_EQ(bytes, offered);
    EXPECT_EQ(state(), before);
  }
}

INSTANTIATE_TEST_SUITE_P(Any, AWrongCode, ::testing::ValuesIn(kOpenSituations),
                         [](const auto& situation) { return situation.param.name; });

/// Exported functions without a frame grabber: not yet got, or given back.
class WithoutAFrameGrabber : public ClientTest {
 protected:
  WithoutAFrameGrabber() { disconnect(); }

  static constexpr unsigned long kNoFrameGrabber = 0x10000017;
  static constexpr unsigned int kAllBits = 0xFFFFFFFF;

  std::array<unsigned char, 16> bytes = {};
};

TEST_F(WithoutAFrameGrabber, NoFeatureIsReadOrWritten) {
  for (const unsigned int channel : {0U, kChannel, 2U, kAllBits}) {
    for (const unsigned int id : {0U, 53U, 54U, 55U, 99U}) {
      osvlx3_feature feature{id, 0, 3, 1, bytes.data()};
      EXPECT_EQ(plugin.get_feature()(channel, &feature), kNoFrameGrabber);
      EXPECT_EQ(plugin.set_feature()(channel, &feature), kNoFrameGrabber);
      EXPECT_EQ(feature.count, 3U);
    }
    EXPECT_EQ(plugin.get_feature()(channel, nullptr), kNoFrameGrabber);
    EXPECT_EQ(plugin.set_feature()(channel, nullptr), kNoFrameGrabber);
  }
  EXPECT_THAT(bytes, Each(Eq(0)));
}

TEST_F(WithoutAFrameGrabber, ThereIsNoFrameInformation) {
  bytes.fill(kUntouched);
  for (const unsigned int type : {0U, 1U, 2U, kAllBits}) {
    EXPECT_EQ(plugin.frame_info()(0, 0, type, bytes.data()), kNoFrameGrabber);
    EXPECT_EQ(plugin.frame_info()(0, 0, type, nullptr), kNoFrameGrabber);
  }
  EXPECT_THAT(bytes, Each(Eq(kUntouched)));
}

TEST_F(WithoutAFrameGrabber, DestroyingAndFreeingNothingDoesNothing) {
  plugin.destroy();
  EXPECT_EQ(plugin.free()(nullptr), 0U);
  EXPECT_EQ(plugin.pointer("m_pFG"), nullptr);
  EXPECT_EQ(plugin.pointer("m_pDummy"), nullptr);
}

}  // namespace
}  // namespace Osv::bad_calls
