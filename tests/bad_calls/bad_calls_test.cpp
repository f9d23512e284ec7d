#include <fstream>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "bad_calls/making_bad_calls.h"
#include "bad_calls/tables.h"
#include "capture/stub_framegrabber.h"

namespace Osv::bad_calls {
namespace {

constexpr Situation kNoScanner = {
    .name = "WithoutAScanner", .enter = &InSituation::without_a_scanner, .scanner = eScanner::Gone};
constexpr Situation kDisconnected = {.name = "AfterADisconnection",
                                     .enter = &InSituation::after_a_disconnection,
                                     .scanner = eScanner::Gone};
constexpr Situation kSituations[] = {
    kNoScanner,
    kDisconnected,
    {.name = "BeforeTheFirstOpening",
     .enter = &InSituation::before_the_first_opening,
     .anew = true},
    {.name = "WithADeadHandle",
     .enter = &InSituation::with_a_dead_handle,
     .scanner = eScanner::Replugged,
     .anew = true},
    {.name = "WhileOpen", .enter = &InSituation::while_open},
    {.name = "DuringCapture",
     .enter = &InSituation::during_capture,
     .captures = true,
     .frames = true},
    {.name = "WhileFrozen", .enter = &InSituation::while_frozen, .captures = true, .frozen = true},
    {.name = "AfterAnErrorAndNoStop",
     .enter = &InSituation::after_an_error_and_no_stop,
     .captures = true}};

using Case = std::tuple<Table, Situation>;

/// Every table in every situation in which its calls are bad.
std::vector<Case> all_cases() {
  std::vector<Case> cases;
  for (const Table& table : all_tables()) {
    for (const Situation& situation : kSituations) {
      if (situation.captures || !table.only_while_capturing) {
        cases.emplace_back(table, situation);
      }
    }
  }
  return cases;
}

std::string name_of(const ::testing::TestParamInfo<Case>& info) {
  return std::string(std::get<0>(info.param).name) + std::get<1>(info.param).name;
}

class ABadCall : public MakingBadCalls, public ::testing::WithParamInterface<Case> {};

TEST_P(ABadCall, IsAnsweredAsToldAndChangesNothing) {
  const auto& [table, situation] = GetParam();
  make_all(table.calls(), situation, table.end_events);
}

INSTANTIATE_TEST_SUITE_P(Any, ABadCall, ::testing::ValuesIn(all_cases()), name_of);

class AGoodCall : public MakingBadCalls, public ::testing::WithParamInterface<Situation> {};

TEST_P(AGoodCall, ThatNeedsAScannerIsNumber2WithoutOneAndChangesNothing) {
  make_all(calls_that_need_a_scanner(), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Any, AGoodCall, ::testing::Values(kNoScanner, kDisconnected),
                         [](const auto& situation) { return situation.param.name; });

/// A frame grabber that notes which of its operations are called.
class Noting : public test::StubFramegrabber {
 public:
  Result Called(const char* operation) override {
    m_operations.insert(operation);
    return 0;
  }

  const std::set<std::string>& operations() const { return m_operations; }

 private:
  std::set<std::string> m_operations;
};

TEST(TheTables, HaveEveryOperationOfTheInterface) {
  constexpr std::size_t kOperations = 35;  // each slot but those of the destructor
  const client::Plugin plugin;
  Noting grabber;
  for (const Table& table : all_tables()) {
    for (const BadCall& call : table.calls()) {
      Hands hands{grabber, plugin, {}, 0};
      call.call(hands);
      plugin.destroy();  // what a row that asks for the frame grabber has got
    }
  }
  EXPECT_EQ(grabber.operations().size(), kOperations);
}

/// Whether a line of the list of exports is a function that a row can call, and not data.
/// `DestroyFrameGrabber` is called without a frame grabber only.
bool is_for_a_row(const std::string& symbol) {
  return !symbol.starts_with("_ZT") && !symbol.starts_with("m_p") &&
         symbol != lx::symbol::DestroyFrameGrabber;
}

TEST(TheTables, HaveEveryExportedFunction) {
  std::set<std::string> exported;
  std::ifstream list(HVK3_EXPORTS);
  for (std::string line; std::getline(list, line);) {
    if (is_for_a_row(line)) {
      exported.insert(line);
    }
  }
  std::set<std::string> called;
  for (const Table& table : all_tables()) {
    for (const BadCall& call : table.calls()) {
      if (call.symbol != nullptr) {
        called.insert(call.symbol);
      }
    }
  }
  EXPECT_FALSE(exported.empty());
  EXPECT_EQ(called, exported);
}

}  // namespace
}  // namespace Osv::bad_calls
