#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "allocations/allocation_sweep.h"
#include "faults/leaks.h"
#include "support/closed_libraries.h"

/// @file
/// A sample of the sweep as tests; with `--whole PART PARTS [SCENARIO]` all of it, as a program.

namespace Osv::allocations {
namespace {

using faults::Scenario;

class AllocationSweeping : public testing::TestWithParam<Scenario> {
 protected:
  simulator::ClosedLibraries libraries;
  AllocationSweep sweep{GetParam()};
};

/// The same ones in each run of the program, and none.
TEST_P(AllocationSweeping, AFailedAllocationHasThePredictedEnd) {
  const std::size_t runs = faults::is_watched() ? 8 : 16;  // a sanitizer takes its time
  std::mt19937 random(static_cast<unsigned int>(std::hash<std::string>()(GetParam().name)));
  std::vector<Attempt> attempts = sweep.attempts();
  std::shuffle(attempts.begin(), attempts.end(), random);
  attempts.resize(std::min(runs, attempts.size()));
  attempts.push_back({});
  for (const Attempt& attempt : attempts) {
    EXPECT_EQ(sweep.findings_of(attempt), "");
  }
  EXPECT_FALSE(faults::leaks());
}

std::string test_name(const testing::TestParamInfo<Scenario>& info) {
  std::string name = info.param.name;
  std::erase(name, ' ');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Of, AllocationSweeping, testing::ValuesIn(faults::all_scenarios()),
                         test_name);

/// What the whole sweep has seen.
struct Figures {
  std::size_t scenarios = 0;
  std::size_t allocations = 0;
  std::size_t runs = 0;
  std::size_t findings = 0;
  std::map<std::string, std::size_t> ends;
};

/// Each `parts`-th run of a scenario, beginning with this one.
void sweep_one(const Scenario& scenario, std::size_t part, std::size_t parts, Figures& figures) {
  AllocationSweep sweep(scenario);
  const std::vector<Attempt> attempts = sweep.attempts();
  const std::size_t before = figures.runs;
  for (std::size_t i = part; i < attempts.size(); i += parts) {
    const std::string findings = sweep.findings_of(attempts[i]);
    ++figures.runs;
    figures.findings += findings.empty() ? 0 : 1;
    std::fwrite(findings.data(), 1, findings.size(), stdout);  // a text may have zero bytes
  }
  if (faults::leaks()) {
    std::printf("%s: leaks\n", scenario.name.c_str());
    ++figures.findings;
  }
  ++figures.scenarios;
  figures.allocations += sweep.allocations();
  for (const auto& [end, runs] : sweep.ends()) {
    figures.ends[end] += runs;
  }
  std::printf("runs: %zu in scenario %s\n", figures.runs - before, scenario.name.c_str());
}

/// @param only the scenario to sweep; empty for all
int sweep_all(const std::string& only, std::size_t part, std::size_t parts) {
  const simulator::ClosedLibraries libraries;
  const auto begin = std::chrono::steady_clock::now();
  std::setvbuf(stdout, nullptr, _IOLBF, 0);  // who ends this early sees what was found
  Figures figures;
  for (const Scenario& scenario : faults::all_scenarios()) {
    if (only.empty() || only == scenario.name) {
      sweep_one(scenario, part, parts, figures);
    }
  }
  for (const auto& [end, runs] : figures.ends) {
    std::printf("runs: %zu ended in %s\n", runs, end.c_str());
  }
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
  std::printf("%zu scenarios, %zu allocations, %zu runs, %zu findings, %.0f seconds\n",
              figures.scenarios, figures.allocations, figures.runs, figures.findings,
              seconds.count());
  return figures.findings == 0 ? 0 : 1;
}

}  // namespace
}  // namespace Osv::allocations

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv, argv + argc);
  if (arguments.size() > 3 && arguments[1] == "--whole") {
    return Osv::allocations::sweep_all(arguments.size() > 4 ? arguments[4] : "",
                                       std::stoul(arguments[2]), std::stoul(arguments[3]));
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
