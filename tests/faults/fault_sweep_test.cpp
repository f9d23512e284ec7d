#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <map>
#include <random>
#include <set>
#include <string>

#include "faults/leaks.h"
#include "faults/storm.h"
#include "faults/sweep.h"
#include "faults/unplugging.h"
#include "support/closed_libraries.h"

/// @file
/// A sample of the sweep as tests; with `--whole PART PARTS [SCENARIO]` all of it, as a
/// program, and with `--storm CYCLES` the storm.

namespace Osv::faults {
namespace {

/// So many of the runs, chosen by the scenario's name: the same ones in each run of the program.
std::vector<Attempt> sample(std::vector<Attempt> runs, std::size_t count, const std::string& seed) {
  std::mt19937 random(static_cast<unsigned int>(std::hash<std::string>()(seed)));
  std::shuffle(runs.begin(), runs.end(), random);
  runs.resize(std::min(count, runs.size()));
  return runs;
}

class FaultSweep : public testing::TestWithParam<Scenario> {
 protected:
  void run(const std::vector<Attempt>& runs) {
    for (const Attempt& attempt : runs) {
      EXPECT_EQ(sweep.findings_of(attempt), "");
    }
    EXPECT_FALSE(leaks());
  }

  simulator::ClosedLibraries libraries;
  Sweep sweep{GetParam()};
};

TEST_P(FaultSweep, WithoutAFaultEverythingIsAsPredicted) { run({Attempt()}); }

TEST_P(FaultSweep, AFaultOfAnyCallHasThePredictedEnd) {
  constexpr std::size_t kRuns = 30;
  run(sample(sweep.single_faults(), kRuns, GetParam().name));
}

TEST_P(FaultSweep, ASecondFaultDuringRecoveryHasThePredictedEnd) {
  constexpr std::size_t kRuns = 6;
  run(sample(sweep.double_faults(), kRuns, GetParam().name));
}

std::string test_name(const testing::TestParamInfo<Scenario>& info) {
  std::string name = info.param.name;
  std::erase(name, ' ');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Of, FaultSweep, testing::ValuesIn(all_scenarios()), test_name);

TEST(FaultSweepRuns, AreFiveThousandAndMoreInSixteenScenariosAndMore) {
  constexpr std::size_t kScenarios = 16;
  constexpr std::size_t kRuns = 5000;
  const simulator::ClosedLibraries libraries;
  std::size_t runs = 0;
  for (const Scenario& scenario : all_scenarios()) {
    for (const Attempt& attempt : Sweep(scenario).single_faults()) {
      runs += attempt.faults.front().lasting ? 0U : 1U;  // a lasting one may be the same again
    }
  }
  EXPECT_GE(all_scenarios().size(), kScenarios);
  EXPECT_GE(runs, kRuns);
}

const Scenario& scenario_of(const std::string& name) {
  return *std::find_if(all_scenarios().begin(), all_scenarios().end(),
                       [&](const Scenario& scenario) { return scenario.name == name; });
}

TEST(ALastingFault, IsNoRepeatIfOnlyTheLookAtTheLocksMeetsItAgain) {
  const simulator::ClosedLibraries libraries;
  const Sweep sweep(scenario_of("snap"));
  for (const Attempt& attempt : sweep.single_faults()) {
    const Fault& fault = attempt.faults.front();
    if (fault.lasting && fault.function == eFunction::ftrScanGetImageByVariableDose) {
      EXPECT_FALSE(sweep.is_repeat(attempt)) << attempt.in_words();
    }
  }
}

TEST(ALastingFault, IsARepeatIfItMeetsOneCallOnly) {
  constexpr long kTolerated = 0x20000004;
  const simulator::ClosedLibraries libraries;
  const Attempt attempt = {
      .faults = {{eFunction::ftrScanSetOptions, 1, true, {.fails_with = kTolerated}}}};
  EXPECT_TRUE(Sweep(scenario_of("snap")).is_repeat(attempt));
}

/// What the whole sweep has seen.
struct Figures {
  std::size_t scenarios = 0;
  std::size_t call_sites = 0;
  std::size_t runs = 0;
  std::size_t findings = 0;
  std::set<std::string> kinds;
  std::map<std::string, std::size_t> by_function;  ///< runs whose first fault it has
  std::map<eNoticed, std::size_t> by_notice;       ///< unpluggings
};

/// Which of the runs are made: two of every two times `parts`. The runs come in pairs, a fault once
/// and from then on, and the second is often a repeat; so each share gets as many of both.
struct Share {
  std::size_t part = 0;
  std::size_t parts = 1;

  bool has(std::size_t run) const { return run / 2 % parts == part; }
};

std::vector<Attempt> faulty_runs(const Sweep& sweep) {
  std::vector<Attempt> runs = sweep.single_faults();
  const std::vector<Attempt> doubles = sweep.double_faults();
  runs.insert(runs.end(), doubles.begin(), doubles.end());
  return runs;
}

std::vector<Attempt> unplugged_runs(const Sweep& sweep) {
  std::vector<Attempt> runs;
  for (const eReturn comes_back : kReturns) {
    const std::vector<Attempt> some = sweep.unpluggings(comes_back);
    runs.insert(runs.end(), some.begin(), some.end());
  }
  return runs;
}

void count(const Attempt& attempt, const std::vector<std::string>& lines, Figures& figures) {
  ++figures.runs;
  for (const Fault& fault : attempt.faults) {
    figures.kinds.insert(fault.effect.in_words(fault.function));
  }
  if (attempt.incident.has_value()) {
    ++figures.by_notice[noticed(met_capture(lines))];
  } else {
    ++figures.by_function[simulator::name_of(attempt.faults.front().function)];
  }
}

void print(const Figures& figures) {
  constexpr std::array kNotices = {"on a frame", "in preparation", "while opening", "not yet"};
  for (const auto& [function, runs] : figures.by_function) {
    std::printf("runs: %zu %s\n", runs, function.c_str());
  }
  for (const auto& [notice, runs] : figures.by_notice) {
    std::printf("runs: %zu unplugged and noticed %s\n", runs,
                kNotices[static_cast<std::size_t>(notice)]);
  }
}

void make_run(Sweep& sweep, const Attempt& attempt, Figures& figures) {
  std::string findings = sweep.findings_of(attempt);
  if (attempt.incident.has_value()) {
    findings += findings_of_unplugging(sweep.lines(), *attempt.incident);
  }
  if (!sweep.was_repeat()) {
    count(attempt, sweep.lines(), figures);
  }
  if (!findings.empty()) {
    std::printf("%s", findings.c_str());
    ++figures.findings;
  }
}

void make_runs(Sweep& sweep, const std::vector<Attempt>& runs, const Share& share,
               Figures& figures) {
  const std::size_t before = figures.runs;
  ++figures.scenarios;
  if (share.part == 0) {
    const std::string findings = sweep.findings_of({});
    std::printf("%s", findings.c_str());
    figures.findings += findings.empty() ? 0 : 1;
  }
  for (std::size_t i = 0; i < runs.size(); ++i) {
    if (share.has(i) && !sweep.is_repeat(runs[i])) {
      make_run(sweep, runs[i], figures);
    }
  }
  std::printf("runs: %zu in scenario %s\n", figures.runs - before, sweep.scenario().name.c_str());
  if (leaks()) {
    std::printf("%s: leaks\n", sweep.scenario().name.c_str());
    ++figures.findings;
  }
}

/// @param only the scenario to sweep; empty for all
int sweep_all(const std::string& only, const Share& share) {
  const simulator::ClosedLibraries libraries;
  const auto begin = std::chrono::steady_clock::now();
  std::setvbuf(stdout, nullptr, _IOLBF, 0);  // who ends this early sees what was found
  Figures figures;
  for (const Scenario& scenario : all_scenarios()) {
    if (only.empty() || only == scenario.name) {
      Sweep sweep(scenario);
      figures.call_sites += sweep.call_sites();
      make_runs(sweep, faulty_runs(sweep), share, figures);
    }
  }
  for (const Scenario& scenario : unplugging_scenarios()) {
    if (only.empty() || only == "unplugging") {
      Sweep sweep(scenario);
      make_runs(sweep, unplugged_runs(sweep), share, figures);
    }
  }
  print(figures);
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
  std::printf("%zu scenarios, %zu call sites, %zu runs, %zu kinds, %zu findings, %.0f seconds\n",
              figures.scenarios, figures.call_sites, figures.runs, figures.kinds.size(),
              figures.findings, seconds.count());
  return figures.findings == 0 ? 0 : 1;
}

}  // namespace
}  // namespace Osv::faults

int main(int argc, char** argv) {
  using namespace Osv::faults;
  const std::vector<std::string> arguments(argv, argv + argc);
  if (arguments.size() > 3 && arguments[1] == "--whole") {
    const Share share{std::stoul(arguments[2]), std::stoul(arguments[3])};
    return sweep_all(arguments.size() > 4 ? arguments[4] : "", share);
  }
  if (arguments.size() > 2 && arguments[1] == "--storm") {
    const Osv::simulator::ClosedLibraries libraries;
    const std::string findings =
        unplug_again_and_again(static_cast<unsigned int>(std::stoul(arguments[2])));
    std::printf("%sunplugged %s times, %s\n", findings.c_str(), arguments[2].c_str(),
                findings.empty() ? "nothing grew" : "with findings");
    return findings.empty() ? 0 : 1;
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
