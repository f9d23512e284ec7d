#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "faults/storm.h"
#include "faults/sweep.h"
#include "faults/unplugging.h"
#include "support/closed_libraries.h"

namespace Osv::faults {
namespace {

/// An unplugging behind some calls of a capture; `--whole` takes every call.
class Unplugging : public testing::TestWithParam<Scenario> {
 protected:
  void unplug_behind_some_calls(eReturn comes_back) {
    constexpr std::size_t kRuns = 2;
    const std::vector<Attempt> all = sweep.unpluggings(comes_back);
    for (std::size_t i = kRuns / 2; i < all.size(); i += all.size() / kRuns) {
      EXPECT_EQ(sweep.findings_of(all[i]), "");
      EXPECT_EQ(findings_of_unplugging(sweep.lines(), comes_back), "") << all[i].in_words();
    }
  }

  simulator::ClosedLibraries libraries;
  Sweep sweep{GetParam()};
};

TEST_P(Unplugging, LeavesNoGhostInTheList) { unplug_behind_some_calls(eReturn::Never); }

TEST_P(Unplugging, IsToldAndOverWhenTheScannerIsBack) { unplug_behind_some_calls(eReturn::Here); }

TEST_P(Unplugging, IsOverWhenTheScannerIsAtAnotherInterface) {
  unplug_behind_some_calls(eReturn::Elsewhere);
}

std::string test_name(const testing::TestParamInfo<Scenario>& info) {
  std::string name = info.param.name;
  std::erase(name, ' ');
  return name;
}

INSTANTIATE_TEST_SUITE_P(In, Unplugging, testing::ValuesIn(unplugging_scenarios()), test_name);

/// An unplugging inside a callback of a capture, with the scanner back at once or not.
class UnpluggingInside : public testing::TestWithParam<eStep> {
 protected:
  static Scenario scenario(unsigned int callback) {
    using enum eStep;
    return {.name = "callback " + std::to_string(callback),
            .attached = {{0}},
            .steps = {{GetParam(), 4, callback}, {PlugInAgain, 0}, {Live, 2}, {Live, 1}}};
  }

  simulator::ClosedLibraries libraries;
};

TEST_P(UnpluggingInside, AnyCallbackHasThePredictedEnd) {
  for (const unsigned int callback : {kStartCallback, 1U, 2U, 3U, 4U, kStopCallback}) {
    const Scenario here = scenario(callback);
    Sweep sweep(here);
    EXPECT_EQ(sweep.findings_of({}), "");
  }
}

TEST_P(UnpluggingInside, AnImageBeforeTheLastIsNoticedAndTheNextStartCaptures) {
  for (const unsigned int callback : {1U, 2U, 3U}) {
    const Scenario here = scenario(callback);
    Sweep sweep(here);
    EXPECT_EQ(sweep.findings_of({}), "");
    EXPECT_TRUE(is_disconnection(sweep.lines()[0])) << sweep.lines()[0];
    EXPECT_TRUE(is_good_capture(sweep.lines()[2])) << sweep.lines()[2];
  }
}

TEST(UnpluggingStorm, LeavesMemoryThreadsAndDescriptorsAsTheyWere) {
  constexpr unsigned int kCycles = 25;
  const simulator::ClosedLibraries libraries;
  EXPECT_EQ(unplug_again_and_again(kCycles), "");
}

std::string step_name(const testing::TestParamInfo<eStep>& info) {
  return info.param == eStep::LiveUnplugged ? "Callback" : "CallbackAndPluggingIn";
}

INSTANTIATE_TEST_SUITE_P(A, UnpluggingInside,
                         testing::Values(eStep::LiveUnplugged, eStep::LiveReplugged), step_name);

}  // namespace
}  // namespace Osv::faults
