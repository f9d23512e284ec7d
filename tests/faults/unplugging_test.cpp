#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <string>
#include <vector>

#include "faults/storm.h"
#include "faults/sweep.h"
#include "faults/unplugging.h"
#include "ostrevanhvk3/enumerations.h"
#include "support/closed_libraries.h"

namespace Osv::faults {
namespace {

std::string test_name(const testing::TestParamInfo<Scenario>& info) {
  std::string name = info.param.name;
  std::erase(name, ' ');
  return name;
}

/// An unplugging behind some call of a capture; `--whole` takes every call.
class Unplugging : public testing::TestWithParam<Scenario> {
 protected:
  /// At another place for each kind of return.
  void unplug_behind_a_call(eReturn comes_back) {
    const std::vector<Attempt> all = sweep.unpluggings(comes_back);
    const std::size_t place = 1 + static_cast<std::size_t>(comes_back);
    const Attempt& attempt = all[place * all.size() / (std::size(kReturns) + 1)];
    EXPECT_EQ(sweep.findings_of(attempt), "");
    EXPECT_EQ(findings_of_unplugging(sweep.lines(), *attempt.incident), "") << attempt.in_words();
  }

  simulator::ClosedLibraries libraries;
  Sweep sweep{GetParam()};
};

TEST_P(Unplugging, LeavesNoGhostInTheList) { unplug_behind_a_call(eReturn::Never); }

TEST_P(Unplugging, IsOverWhenTheScannerIsBack) { unplug_behind_a_call(eReturn::Here); }

TEST_P(Unplugging, IsOverWhenAScannerIsAtAnotherInterface) {
  unplug_behind_a_call(eReturn::Elsewhere);
}

TEST_P(Unplugging, IsOverWhenAScannerWithLargerFramesIsInItsPlace) {
  unplug_behind_a_call(eReturn::Another);
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
      attempt = candidate.incident->function == function ? candidate : attempt;
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

/// An unplugging inside each callback of a capture.
class UnpluggingInside : public testing::TestWithParam<eReturn> {
 protected:
  static Scenario scenario(const std::vector<Step>& before, const Step& capture) {
    Scenario all = {.name = "callback " + std::to_string(capture.unplugs->callback),
                    .attached = {{0}, {.interface = kElsewhere, .away = true}},
                    .steps = before};
    for (const Step& step :
         {capture, {eStep::PlugInAgain, 0}, {eStep::Live, 2}, {eStep::Live, 1}}) {
      all.steps.push_back(step);
    }
    return all;
  }

  static Step live(unsigned int callback) {
    return {eStep::Live, 4, 0, faults::Unplugging{callback, GetParam()}};
  }

  static std::string findings_in(const Scenario& scenario, const Faults& faults = {}) {
    return Sweep(scenario).findings_of({.faults = faults});
  }

  simulator::ClosedLibraries libraries;
};

TEST_P(UnpluggingInside, TheStartTheLastImageOrTheStopHasThePredictedEnd) {
  for (const unsigned int callback : {kStartCallback, 4U, kStopCallback}) {
    EXPECT_EQ(findings_in(scenario({}, live(callback))), "");
  }
}

TEST_P(UnpluggingInside, TheFingersCallbackHasThePredictedEnd) {
  const Step plain = {eStep::Plain, 4, 0, faults::Unplugging{kFingerCallback, GetParam()}};
  EXPECT_EQ(findings_in(scenario({}, plain)), "");
}

TEST_P(UnpluggingInside, TheErrorsCallbackHasThePredictedEnd) {
  const Fault fault = {
      simulator::eFunction::ftrScanGetImageByVariableDose, 3, false, {.fails_with = 1460}};
  EXPECT_EQ(findings_in(scenario({}, live(kErrorCallback)), {fault}), "");
}

TEST_P(UnpluggingInside, TheEventsCallbackHasThePredictedEnd) {
  Scenario printed = scenario(
      {{eStep::SetProperty, ePropFakeDetection, 30}, {eStep::SetProperty, ePropLiveliness, 1}},
      live(kEventCallback));
  printed.finger = simulator::eFingerKind::Printed;
  EXPECT_EQ(findings_in(printed), "");
}

TEST_P(UnpluggingInside, AnImageBeforeTheLastIsNoticedAndTheNextStartCaptures) {
  for (const unsigned int callback : {1U, 2U, 3U}) {
    const Scenario here = scenario({}, live(callback));
    Sweep sweep(here);
    EXPECT_EQ(sweep.findings_of({}), "");
    EXPECT_EQ(noticed(sweep.lines()[0]), eNoticed::OnAFrame) << sweep.lines()[0];
    EXPECT_TRUE(is_good_capture(sweep.lines()[2])) << sweep.lines()[2];
  }
}

INSTANTIATE_TEST_SUITE_P(With, UnpluggingInside, testing::ValuesIn(kReturns), return_name);

TEST(UnpluggingStorm, LeavesMemoryThreadsAndDescriptorsAsTheyWere) {
  constexpr unsigned int kCycles = 25;
  const simulator::ClosedLibraries libraries;
  EXPECT_EQ(unplug_again_and_again(kCycles), "");
}

}  // namespace
}  // namespace Osv::faults
