#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>
#include <iterator>

#include "bad_calls/making_bad_calls.h"
#include "bad_calls/tables.h"
#include "capture/stub_framegrabber.h"
#include "foundation/system_failures.h"

namespace Osv::bad_calls {
namespace {

using lx::error_number::BufferTooSmall;
using lx::error_number::ReportedBit;

/// A client without a frame grabber: not yet got, or given back.
class Without : public MakingBadCalls {
 protected:
  Without() { disconnect(); }

  /// Makes a call that is answered with a number and changes nothing.
  void make(const BadCall& call, lx::ClFramegrabber& receiver, unsigned long number) {
    SCOPED_TRACE(call.what);
    Hands hands = hands_for(call, receiver);
    const State before = scanner_state();
    EXPECT_EQ(call.call(hands), number);
    EXPECT_EQ(hands.size, call.size);
    expect_untouched(hands, 0);
    EXPECT_EQ(scanner_state(), before);
    expect_callbacks(false);
  }
};

class WithoutAFrameGrabber : public Without, public ::testing::WithParamInterface<Table> {};

TEST_P(WithoutAFrameGrabber, ExportedFunctionsChangeNothingAndStoreNoText) {
  test::StubFramegrabber nobody;
  for (const BadCall& call : GetParam().calls()) {
    if (call.without_frame_grabber.has_value()) {
      make(call, nobody, *call.without_frame_grabber);
    }
  }
  EXPECT_EQ(plugin.pointer("m_pFG"), nullptr);
  EXPECT_EQ(plugin.pointer("m_pDummy"), nullptr);
  connect();
  EXPECT_EQ(last_text(), "");
}

/// The system has no mutex to spare, so in place of the frame grabber there is an object that tells
/// of it.
class WithAnObjectInItsPlace : public Without {
 protected:
  WithAnObjectInItsPlace() {
    const testing_support::FailingSystem failing(testing_support::eFailing::MutexInit, EAGAIN);
    grabber = &plugin.grabber();
  }

  /// The size that `GetLastError` comes back with.
  unsigned long ask(char* text, unsigned long size, unsigned long result) {
    EXPECT_EQ(grabber->GetLastError(text, size), result);
    return size;
  }

  const std::string failure = std::strerror(EAGAIN);
};

class ACallWithAnObjectInItsPlace : public WithAnObjectInItsPlace,
                                    public ::testing::WithParamInterface<Table> {};

TEST_P(ACallWithAnObjectInItsPlace, GivesItsNumberAndChangesNothing) {
  std::string text(failure.size() + 2, 'x');
  for (const BadCall& call : GetParam().calls()) {
    make(call, *grabber, call.without_frame_grabber.value_or(ReportedBit | EAGAIN));
    EXPECT_EQ(ask(text.data(), text.size(), 0), failure.size());
    EXPECT_EQ(text.c_str(), failure);
  }
  EXPECT_EQ(plugin.pointer("m_pFG"), nullptr);
  EXPECT_EQ(plugin.pointer("m_pDummy"), grabber);
}

using AFrameGrabberThatIsNotThere = Without;

TEST_F(AFrameGrabberThatIsNotThere, IsDestroyedAgainWithoutAnEffect) {
  const State before = scanner_state();
  plugin.destroy();
  plugin.destroy();
  EXPECT_EQ(plugin.pointer("m_pFG"), nullptr);
  EXPECT_EQ(plugin.pointer("m_pDummy"), nullptr);
  EXPECT_EQ(scanner_state(), before);
  connect();
  EXPECT_EQ(last_text(), "");
}

TEST_F(WithAnObjectInItsPlace, TheNextCallMakesTheFrameGrabberAndTheObjectStaysUntilTheEnd) {
  lx::ClFramegrabber* const made = &plugin.grabber();
  EXPECT_NE(made, grabber);
  EXPECT_EQ(plugin.pointer("m_pFG"), made);
  EXPECT_EQ(plugin.pointer("m_pDummy"), grabber);
}

TEST_F(WithAnObjectInItsPlace, TheObjectIsDestroyedOnceAndThenThereIsNothingToDestroy) {
  plugin.destroy();
  grabber = nullptr;
  plugin.destroy();
  EXPECT_EQ(plugin.pointer("m_pFG"), nullptr);
  EXPECT_EQ(plugin.pointer("m_pDummy"), nullptr);
}

// As much room as there is no memory for is a lie that ends badly: all of the room is zeroed.
TEST_F(WithAnObjectInItsPlace, ItsTextNeedsOneByteMoreThanItsEnd) {
  std::string text(failure.size() + 3, 'x');
  for (const unsigned long small : {0UL, 1UL, failure.size(), failure.size() + 1}) {
    EXPECT_EQ(ask(nullptr, small, ReportedBit | BufferTooSmall), failure.size());
    EXPECT_EQ(ask(text.data(), small, ReportedBit | BufferTooSmall), failure.size());
  }
  EXPECT_EQ(ask(nullptr, ~0UL, ReportedBit | BufferTooSmall), failure.size());
  EXPECT_EQ(text, std::string(text.size(), 'x'));
  EXPECT_EQ(ask(text.data(), failure.size() + 2, 0), failure.size());
  EXPECT_EQ(text, failure + std::string(2, '\0') + 'x');
}

template <typename Condition>
std::vector<Table> tables(Condition condition) {
  std::vector<Table> chosen;
  std::copy_if(all_tables().begin(), all_tables().end(), std::back_inserter(chosen), condition);
  return chosen;
}

bool has_exported_functions(const Table& table) {
  const BadCalls calls = table.calls();
  return std::any_of(calls.begin(), calls.end(),
                     [](const BadCall& call) { return call.without_frame_grabber.has_value(); });
}

bool has_own_rule(const Table& table) { return table.own_rule_without_frame_grabber; }

std::string name_of(const ::testing::TestParamInfo<Table>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(Any, WithoutAFrameGrabber,
                         ::testing::ValuesIn(tables(&has_exported_functions)), name_of);
INSTANTIATE_TEST_SUITE_P(Any, ACallWithAnObjectInItsPlace,
                         ::testing::ValuesIn(tables(std::not_fn(&has_own_rule))), name_of);

}  // namespace
}  // namespace Osv::bad_calls
