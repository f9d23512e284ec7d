#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <random>
#include <set>
#include <string>

#include "faults/sweep.h"
#include "support/closed_libraries.h"

/// @file
/// A sample of the sweep as tests; with `--whole` all of it, as a program.

extern "C" __attribute__((weak)) int __lsan_do_recoverable_leak_check();

namespace Osv::faults {
namespace {

bool leaks() {
  return __lsan_do_recoverable_leak_check != nullptr && __lsan_do_recoverable_leak_check() != 0;
}

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
  constexpr std::size_t kRuns = 12;
  run(sample(sweep.single_faults(), kRuns, GetParam().name));
}

TEST_P(FaultSweep, ASecondFaultDuringRecoveryHasThePredictedEnd) {
  constexpr std::size_t kRuns = 4;
  run(sample(sweep.double_faults(), kRuns, GetParam().name));
}

std::string test_name(const testing::TestParamInfo<Scenario>& info) {
  std::string name = info.param.name;
  std::erase(name, ' ');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Of, FaultSweep, testing::ValuesIn(all_scenarios()), test_name);

/// What the whole sweep has seen.
struct Figures {
  std::size_t scenarios = 0;
  std::size_t call_sites = 0;
  std::size_t runs = 0;
  std::size_t findings = 0;
  std::set<std::string> kinds;
};

void sweep_scenario(const Scenario& scenario, std::size_t part, std::size_t parts,
                    Figures& figures) {
  Sweep sweep(scenario);
  std::vector<Attempt> runs = sweep.single_faults();
  const std::vector<Attempt> doubles = sweep.double_faults();
  runs.insert(runs.end(), doubles.begin(), doubles.end());
  ++figures.scenarios;
  figures.call_sites += sweep.call_sites();
  for (std::size_t i = part; i < runs.size(); i += parts) {
    const Fault& fault = runs[i].faults.front();
    figures.kinds.insert(fault.effect.in_words(fault.function));
    ++figures.runs;
    const std::string findings = sweep.findings_of(runs[i]);
    if (!findings.empty()) {
      std::printf("%s", findings.c_str());
      ++figures.findings;
    }
  }
  if (leaks()) {
    std::printf("%s: leaks\n", scenario.name.c_str());
    ++figures.findings;
  }
}

/// @param only the scenario to sweep; empty for all
/// @param part which of so many `parts` of the runs
int sweep_all(const std::string& only, std::size_t part, std::size_t parts) {
  const simulator::ClosedLibraries libraries;
  const auto begin = std::chrono::steady_clock::now();
  Figures figures;
  for (const Scenario& scenario : all_scenarios()) {
    if (only.empty() || only == scenario.name) {
      sweep_scenario(scenario, part, parts, figures);
    }
  }
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
  std::printf("%zu scenarios, %zu call sites, %zu runs, %zu kinds, %zu findings, %.0f seconds\n",
              figures.scenarios, figures.call_sites, figures.runs, figures.kinds.size(),
              figures.findings, seconds.count());
  return figures.findings == 0 ? 0 : 1;
}

}  // namespace
}  // namespace Osv::faults

int main(int argc, char** argv) {
  if (argc > 3 && std::strcmp(argv[1], "--whole") == 0) {
    return Osv::faults::sweep_all(argc > 4 ? argv[4] : "", std::stoul(argv[2]),
                                  std::stoul(argv[3]));
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
