#include <fstream>
#include <regex>
#include <stdexcept>

#include "support/simulator_fixture.h"

namespace Osv::simulator {
namespace {

/// What the page of the manual shows, said to the bench.
class SimulatorPage : public SimulatorFixture {
 protected:
  /// The lines from a heading to the next one that match, each as its first group.
  static std::vector<std::string> under(const std::string& heading, const std::string& pattern) {
    std::ifstream page(HVK3_DOCS_DIR "/simulator.md");
    std::vector<std::string> lines;
    std::smatch match;
    bool here = false;
    for (std::string line; std::getline(page, line);) {
      here = line.starts_with("#") ? line == heading : here;
      if (here && std::regex_match(line, match, std::regex(pattern))) {
        lines.push_back(match[1]);
      }
    }
    return lines;
  }

  bool is_fault(const std::string& words) {
    try {
      bench.set_faults(words);
      return true;
    } catch (const std::invalid_argument&) {
      return false;
    }
  }

  /// Whether the function can have the effect of the page, with numbers and a text put in.
  bool takes(const std::string& function, std::string effect) {
    effect = std::regex_replace(effect, std::regex("\\b[NESLWH]\\b"), "3");
    return is_fault(function + " " + effect);
  }
};

TEST_F(SimulatorPage, HasAScenarioThatIsUnderstood) {
  std::string scenario;
  for (const std::string& line : under("## Words", "    (.*)")) {
    scenario += line + "\n";
  }
  EXPECT_GT(scenario.size(), 100U);
  EXPECT_NO_THROW(bench.set_scenario(scenario));
}

TEST_F(SimulatorPage, HasFaultsThatAreUnderstood) {
  const std::vector<std::string> faults = under("## Fault words", "    ((?:ftr|Cal|Fake).*)");
  EXPECT_EQ(faults.size(), 7U);
  for (const std::string& fault : faults) {
    EXPECT_TRUE(is_fault(fault)) << fault;
  }
}

TEST_F(SimulatorPage, HasCallsThatAreUnderstood) {
  const std::vector<std::string> calls =
      under("## Fault words", "\\| `((?:call|from|always|of).*?)`.*");
  EXPECT_EQ(calls.size(), 5U);
  for (const std::string& call : calls) {
    EXPECT_TRUE(is_fault("CalibrateGetOption " + call + " fails with 3")) << call;
  }
}

TEST_F(SimulatorPage, SaysWhichFunctionsAnEffectIsFor) {
  const std::regex row("(.+?)` \\| ([^|]*) \\| .*");
  const std::regex name("`(\\w+)`");
  int functions = 0;
  for (const std::string& line : under("## Fault words", "\\| `((?:fails|answers|gives).*)")) {
    std::smatch cells;
    ASSERT_TRUE(std::regex_match(line, cells, row)) << line;
    const std::string effect = cells[1];
    const std::string those = cells[2];
    const bool exceptions = those.find("all ") == 0 || those.find("but ") != std::string::npos;
    for (std::sregex_iterator at(those.begin(), those.end(), name), end; at != end; ++at) {
      EXPECT_NE(takes((*at)[1], effect), exceptions) << (*at)[1] << " " << effect;
      ++functions;
    }
  }
  EXPECT_GT(functions, 15);
}

}  // namespace
}  // namespace Osv::simulator
