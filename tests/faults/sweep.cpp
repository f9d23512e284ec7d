#include "faults/sweep.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "faults/heap.h"
#include "faults/threads.h"
#include "ostrevanhvk3/enumerations.h"
#include "ostrevanhvk3_simulator/bench.h"
#include "support/closed_libraries.h"
#include "support/sleeps.h"

namespace Osv::faults {
namespace {

using enum simulator::eFunction;

constexpr long kOrdinary = 1460;

simulator::Bench& bench() { return *ostrevan_simulator_bench(); }

/// The second faults of a run: a disconnection, a scanner that can't be opened, an engine that
/// fails.
const Faults& second_faults() {
  static const Faults all = {
      {.function = ftrScanGetImageByVariableDose, .effect = {.fails_with = 2}},
      {.function = ftrScanOpenDeviceOnInterface, .effect = {.null_handle = true}},
      {.function = Calibrate, .effect = {.fails_with = -1}}};
  return all;
}

/// A failure of a call that is neither told by value nor without a number, if there is one.
const Effect& ordinary_kind(eFunction function) {
  const std::vector<Effect>& kinds = kinds_of(function);
  const auto found = std::find_if(kinds.begin(), kinds.end(), [](const Effect& kind) {
    return kind.fails_with == kOrdinary || kind.answer == kOrdinary;
  });
  return found == kinds.end() ? kinds.front() : *found;
}

/// Whether a text is as predicted; a `*` stands for anything.
bool is_as_predicted(const std::string& got, const std::string& predicted) {
  std::size_t place = 0;
  std::size_t from = 0;
  while (true) {
    const std::size_t star = predicted.find('*', from);
    const std::string piece = predicted.substr(from, star - from);
    const std::size_t found = star == std::string::npos && from != 0
                                  ? got.size() - std::min(got.size(), piece.size())
                                  : got.find(piece, place);
    if (found == std::string::npos || found < place || (from == 0 && found != 0) ||
        got.compare(found, piece.size(), piece) != 0) {
      return false;
    }
    place = found + piece.size();
    if (star == std::string::npos) {
      return place == got.size();
    }
    from = star + 1;
  }
}

std::string difference(const std::string& got, const std::string& predicted) {
  return is_as_predicted(got, predicted) ? "" : "  " + got + "\n  and not\n  " + predicted + "\n";
}

/// The calls of which the plug-in made more or less than predicted.
std::string check_counts(const Answers& answers) {
  std::string wrong;
  for (std::size_t i = 0; i < simulator::kFunctionCount; ++i) {
    const std::string name = simulator::kFunctionNames[i];
    const unsigned int made = bench().count(name);
    if (made != answers.counts()[i] && !name.starts_with("OsvLF")) {
      wrong += "  " + name + " was called " + std::to_string(made) + " times and not " +
               std::to_string(answers.counts()[i]) + "\n";
    }
  }
  return wrong;
}

std::string check_census(const DriverModel& model) {
  const simulator::Census census = bench().census();
  std::string wrong;
  const auto check = [&](const char* what, unsigned int got, unsigned int predicted) {
    if (got != predicted) {
      wrong +=
          "  " + std::to_string(got) + ' ' + what + " and not " + std::to_string(predicted) + "\n";
    }
  };
  check("handles of scanners are open", census.scanner_handles, model.answers().open_handles());
  check("engines are alive", census.engines, 0);
  check("detectors are alive", census.detectors, 0);
  check("instances were left behind", census.left_behind, model.lost_detectors());
  check("things were given back twice", census.wrong_releases, 0);
  return wrong;
}

}  // namespace

Sweep::Sweep(const Scenario& scenario) : m_sScenario(scenario) {
  lay_out();
  static std::map<simulator::eFingerKind, double> scores;
  const auto [score, is_new] = scores.try_emplace(scenario.finger, 0);
  if (is_new) {
    score->second = own_score();
  }
  m_dScore = score->second;
  DriverModel model(scenario, m_dScore);
  std::size_t first_calls = 0;
  for (const Step& step : scenario.steps) {
    model.run(step);
    if (first_calls == 0 && is_capture(step)) {
      first_calls = model.answers().calls().size();
    }
  }
  model.destroy();
  learn_sites(model.answers(), first_calls);
}

/// What the detector gives this finger.
double Sweep::own_score() {
  Client client;
  client.run({eStep::SetProperty, ePropFakeDetection, 1});
  client.run({eStep::SetProperty, ePropLiveliness, 1});
  client.run({eStep::Snap});
  return client.score();
}

void Sweep::lay_out() {
  bench().reset();
  bench().set_pace(0);
  bench().set_timeline(simulator::Timeline::settled_finger());
  bench().set_finger_kind(m_sScenario.finger);
  bench().list_from_base(true);
  for (const Attached& device : m_sScenario.attached) {
    bench().plug_in(device.interface, {.serial = serial_of(device.interface),
                                       .model = device.model,
                                       .frame_width = device.frames.first,
                                       .frame_height = device.frames.second,
                                       .memory = device.memory});
    if (device.away) {
      bench().unplug(device.interface);
    }
  }
  test::Sleeps().forget();
}

void Sweep::learn_sites(const Answers& answers, std::size_t first_calls) {
  std::array<unsigned int, simulator::kFunctionCount> counts = {};
  for (const eFunction function : answers.calls()) {
    Site site{function, ++counts[simulator::index_of(function)], {}};
    for (const Fault& second : second_faults()) {
      site.before[second.function] = counts[simulator::index_of(second.function)];
    }
    if (m_vFirstCalls.size() < first_calls) {
      m_vFirstCalls.push_back(site);
    }
    if (!kinds_of(function).empty()) {
      m_vSites.push_back(site);
    }
  }
}

std::vector<Attempt> Sweep::single_faults() const {
  std::vector<Attempt> runs;
  for (const Site& site : m_vSites) {
    for (const Effect& kind : kinds_of(site.function)) {
      for (const bool lasting : {false, true}) {
        runs.push_back({.faults = {{site.function, site.call, lasting, kind}}});
      }
    }
  }
  return runs;
}

std::vector<Attempt> Sweep::double_faults() const {
  std::vector<Attempt> runs;
  for (const Site& site : m_vSites) {
    for (Fault second : second_faults()) {
      second.first = site.before.at(second.function) + 1;
      const Fault first{site.function, site.call, false, ordinary_kind(site.function)};
      runs.push_back({.faults = {first, second}, .twice = true});
    }
  }
  return runs;
}

std::vector<Attempt> Sweep::unpluggings(eReturn comes_back) const {
  bool opening = true;
  std::vector<Attempt> runs = {{.incident = Incident{.comes_back = comes_back, .opening = true}}};
  for (const Site& site : m_vFirstCalls) {
    opening = opening && site.function != CalibrateSetData;
    runs.push_back({.incident = Incident{site.function, site.call, comes_back, opening}});
  }
  return runs;
}

std::string Sweep::do_steps(Client& client, DriverModel& model) {
  std::string findings;
  for (const Step& step : m_sScenario.steps) {
    const std::string predicted = model.run(step);
    m_vLines.push_back(client.run(step));
    findings += difference(m_vLines.back(), predicted);
  }
  return findings;
}

/// A lock that somebody still holds is one that another thread does not get.
std::string Sweep::check_locks(Client& client, DriverModel& model) {
  const Step step = {eStep::List};
  const std::string predicted = model.run(step);
  return difference(client.run_elsewhere(step), predicted);
}

std::string Attempt::in_words() const {
  return incident.has_value() ? incident->in_words() : faults::in_words(faults);
}

std::string Sweep::findings_of(const Attempt& attempt) {
  constexpr int kTries = 4;
  std::string findings = "leaves memory behind\n";
  // What some cache has taken is no leak: that grows each time.
  for (int tries = 0; tries < kTries; ++tries) {
    Run made = run(attempt);
    m_vLines = std::move(made.lines);
    if (!made.findings.empty() || made.growth <= 0) {
      findings = std::move(made.findings);
      break;
    }
  }
  return findings.empty() ? "" : m_sScenario.name + ": " + attempt.in_words() + "\n" + findings;
}

/// A run with faults, and one without behind it.
Sweep::Run Sweep::run(const Attempt& attempt) {
  const std::string name = m_sScenario.name + ": " + attempt.in_words();
  Run made;
  m_vLines = {};
  simulator::ClosedLibraries::forget_openings();
  const std::optional<long> before = live_blocks();
  m_cDeadline.begin(name);
  made.findings = pass(attempt);
  made.lines = std::exchange(m_vLines, {});
  m_cDeadline.begin("behind " + name);
  const std::string behind = pass({});
  m_vLines = {};
  simulator::ClosedLibraries::forget_openings();
  m_cDeadline.end();
  // A block for each line, and one for all.
  made.growth =
      live_blocks().value_or(0) - before.value_or(0) - static_cast<long>(made.lines.size() + 1);
  made.findings += behind.empty() ? "" : "behind it\n" + behind;
  return made;
}

std::string Sweep::pass(const Attempt& attempt) {
  lay_out();
  DriverModel model(m_sScenario, m_dScore);
  bench().set_faults(in_words(attempt.faults));
  model.plan(attempt.faults);
  if (attempt.incident.has_value()) {
    bench().set_scenario(attempt.incident->in_words());
    model.plan(*attempt.incident);
  }
  m_vLines.clear();
  const Threads before = threads();
  std::string findings;
  Client client;
  for (int round = 0; round < (attempt.twice ? 2 : 1); ++round) {
    findings += do_steps(client, model);
  }
  findings += check_locks(client, model);
  client.destroy();
  model.destroy();
  findings += check_counts(model.answers()) + check_census(model);
  if (client.stray_callbacks() != 0) {
    findings += "  callbacks came when nothing was captured\n";
  }
  if (!are_all(before)) {
    findings += "  a thread is left\n";
  }
  return findings;
}

}  // namespace Osv::faults
