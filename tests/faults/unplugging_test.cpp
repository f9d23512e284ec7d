#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <string>
#include <vector>

#include "faults/storm.h"
#include "faults/sweep.h"
#include "faults/unplugging.h"
#include "support/closed_libraries.h"

namespace Osv::faults {
namespace {

std::string test_name(const testing::TestParamInfo<Scenario>& info) {
  std::string name = info.param.name;
  std::erase(name, ' ');
  return name;
}

/// An unplugging behind some call or inside some callback of a capture; `--whole` takes every one.
class Unplugging : public testing::TestWithParam<Scenario> {
 protected:
  /// At another place for each kind of return.
  void unplug_somewhere(eReturn comes_back) {
    const std::vector<Attempt> all = sweep.unpluggings(comes_back);
    const std::size_t place = 1 + static_cast<std::size_t>(comes_back);
    const Attempt& attempt = all[place * all.size() / (std::size(kReturns) + 1)];
    EXPECT_EQ(sweep.findings_of(attempt), "");
    EXPECT_EQ(findings_of_unplugging(sweep.lines(), *attempt.incident), "") << attempt.in_words();
  }

  simulator::ClosedLibraries libraries;
  Sweep sweep{GetParam()};
};

TEST_P(Unplugging, LeavesNoGhostInTheList) { unplug_somewhere(eReturn::Never); }

TEST_P(Unplugging, IsOverWhenTheScannerIsBack) { unplug_somewhere(eReturn::Here); }

TEST_P(Unplugging, IsOverWhenAScannerIsAtAnotherInterface) { unplug_somewhere(eReturn::Elsewhere); }

TEST_P(Unplugging, IsOverWhenAScannerWithLargerFramesIsInItsPlace) {
  unplug_somewhere(eReturn::Another);
}

INSTANTIATE_TEST_SUITE_P(In, Unplugging, testing::ValuesIn(unplugging_scenarios()), test_name);

/// The two ways in which a capture in progress or one that is to start notices it, on the plainest
/// of the scenarios.
class UnpluggingIn : public testing::TestWithParam<eReturn> {
 protected:
  /// What the client had, for an unplugging behind the last call of a function before the stop.
  const std::vector<std::string>& behind_last(eFunction function) {
    Attempt attempt;
    for (const Attempt& candidate : sweep.unpluggings(GetParam())) {
      const bool is_it =
          candidate.incident->function == function && !candidate.incident->callback.has_value();
      attempt = is_it ? candidate : attempt;
    }
    EXPECT_EQ(sweep.findings_of(attempt), "");
    EXPECT_EQ(findings_of_unplugging(sweep.lines(), *attempt.incident), "");
    return sweep.lines();
  }

  simulator::ClosedLibraries libraries;
  Sweep sweep{unplugging_scenarios().front()};
};

TEST_P(UnpluggingIn, APreparationIsToldAtEachStartAndNotJudged) {
  EXPECT_EQ(noticed(met_capture(behind_last(simulator::eFunction::ftrScanGetImageSize))),
            eNoticed::InPreparation);
}

TEST_P(UnpluggingIn, TheLastFrameIsNoticedByTheNextPreparation) {
  EXPECT_EQ(noticed(met_capture(behind_last(simulator::eFunction::Calibrate))), eNoticed::NotYet);
}

std::string return_name(const testing::TestParamInfo<eReturn>& info) {
  constexpr std::array kNames = {"ForGood", "AndBack", "AndElsewhere", "AndAnother"};
  return kNames[static_cast<std::size_t>(info.param)];
}

INSTANTIATE_TEST_SUITE_P(With, UnpluggingIn, testing::ValuesIn(kReturns), return_name);

TEST(UnpluggingPoints, AreTwoHundredAndMore) {
  constexpr std::size_t kPoints = 200;
  const simulator::ClosedLibraries libraries;
  std::size_t points = 0;
  for (const Scenario& scenario : unplugging_scenarios()) {
    points += Sweep(scenario).unpluggings(eReturn::Never).size();
  }
  EXPECT_GE(points, kPoints);
}

/// An unplugging inside a callback of the capture that it meets.
class UnpluggingInside : public testing::TestWithParam<eReturn> {
 protected:
  /// The capture that was met.
  static std::string met(const std::string& scenario, unsigned int callback) {
    const auto found =
        std::find_if(unplugging_scenarios().begin(), unplugging_scenarios().end(),
                     [&](const Scenario& candidate) { return candidate.name == scenario; });
    Sweep sweep(*found);
    const std::vector<Attempt> all = sweep.unpluggings(GetParam());
    const auto attempt = std::find_if(all.begin(), all.end(), [&](const Attempt& candidate) {
      return candidate.incident->callback == callback;
    });
    EXPECT_EQ(sweep.findings_of(*attempt), "");
    EXPECT_EQ(findings_of_unplugging(sweep.lines(), *attempt->incident), "");
    return met_capture(sweep.lines());
  }

  simulator::ClosedLibraries libraries;
};

TEST_P(UnpluggingInside, TheStartIsNoticedInThePreparation) {
  EXPECT_EQ(noticed(met("live", kStartCallback)), eNoticed::InPreparation);
}

TEST_P(UnpluggingInside, AnImageBeforeTheLastIsNoticedOnTheNextFrame) {
  for (const unsigned int callback : {1U, 2U, 5U}) {
    EXPECT_EQ(noticed(met("live", callback)), eNoticed::OnAFrame);
  }
}

TEST_P(UnpluggingInside, TheLastImageTheFingerOrTheStopIsNoticedByTheNextStart) {
  EXPECT_EQ(noticed(met("live", 6)), eNoticed::NotYet);
  EXPECT_EQ(noticed(met("plain", kFingerCallback)), eNoticed::NotYet);
  EXPECT_EQ(noticed(met("live", kStopCallback)), eNoticed::NotYet);
}

TEST_P(UnpluggingInside, TheErrorOfAnotherFailureIsNoticedByTheNextStart) {
  EXPECT_EQ(noticed(met("live", kErrorCallback)), eNoticed::NotYet);
}

TEST_P(UnpluggingInside, AnEventIsNoticedByTheNextFramesPreparation) {
  EXPECT_EQ(noticed(met("printed finger", kEventCallback)), eNoticed::InPreparation);
}

INSTANTIATE_TEST_SUITE_P(With, UnpluggingInside, testing::ValuesIn(kReturns), return_name);

TEST(UnpluggingStorm, LeavesMemoryThreadsAndDescriptorsAsTheyWere) {
  constexpr unsigned int kCycles = 25;
  const simulator::ClosedLibraries libraries;
  EXPECT_EQ(unplug_again_and_again(kCycles), "");
}

}  // namespace
}  // namespace Osv::faults
