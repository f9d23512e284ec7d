#include "faults/sweep.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "faults/heap.h"
#include "faults/stage.h"
#include "faults/threads.h"
#include "ostrevanhvk3_simulator/bench.h"
#include "support/closed_libraries.h"

namespace Osv::faults {
namespace {

using enum simulator::eFunction;

constexpr long kGone = 2;
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

/// The first faults of a run with two: a failure that is told by value as a disconnection, and one
/// that is not; the first kind where there is neither.
std::vector<Effect> first_kinds(eFunction function) {
  std::vector<Effect> found;
  for (const Effect& kind : kinds_of(function)) {
    for (const long number : {kGone, kOrdinary}) {
      if (kind.fails_with == number || (function == ftrScanGetLastError && kind.answer == number)) {
        found.push_back(kind);
      }
    }
  }
  return found.empty() ? std::vector{kinds_of(function).front()} : found;
}

/// What the bench and the loader have written down is the tests' own memory.
void forget_records() {
  bench().clear_journal();
  simulator::ClosedLibraries::forget_openings();
}

/// Whether faults give a text that nobody has asked for since the scene was laid out.
bool gives_text_in_vain(const Faults& faults) {
  return bench().count(simulator::name_of(CalibrateGetErrorDescription)) == 0 &&
         bench().count(simulator::name_of(FakeFingerDetectionGetErrorDescriptionA)) == 0 &&
         std::any_of(faults.begin(), faults.end(),
                     [](const Fault& fault) { return fault.effect.description.has_value(); });
}

}  // namespace

Sweep::Sweep(const Scenario& scenario) : m_sScenario(scenario), m_dScore(own_score(scenario)) {
  DriverModel model(scenario, m_dScore);
  std::size_t first_calls = 0;
  for (const Step& step : scenario.steps) {
    model.run(step);
    if (first_calls == 0 && is_capture(step)) {
      first_calls = model.answers().calls().size();
      m_vFirstCallbacks = model.callbacks();
    }
  }
  model.destroy();
  learn_sites(model.answers(), first_calls);
  // Only the first event of a capture is one to act in.
  std::sort(m_vFirstCallbacks.begin(), m_vFirstCallbacks.end());
  m_vFirstCallbacks.erase(std::unique(m_vFirstCallbacks.begin(), m_vFirstCallbacks.end()),
                          m_vFirstCallbacks.end());
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
      for (const Effect& kind : first_kinds(site.function)) {
        const Fault first{site.function, site.call, false, kind};
        runs.push_back({.faults = {first, second}, .twice = true});
      }
    }
  }
  return runs;
}

bool Sweep::is_repeat(const Attempt& attempt) const {
  DriverModel model(m_sScenario, m_dScore);
  model.plan(attempt.faults);
  for (const std::vector<Step>& steps : {steps_of(attempt), locking_steps()}) {
    for (const Step& step : steps) {
      model.run(step);
    }
  }
  model.destroy();
  const Answers::Counts& counts = model.answers().counts();
  return std::any_of(attempt.faults.begin(), attempt.faults.end(), [&](const Fault& fault) {
    const unsigned int calls = counts[simulator::index_of(fault.function)];
    return fault.lasting ? calls <= fault.first : calls < fault.first;
  });
}

std::vector<Attempt> Sweep::unpluggings(eReturn comes_back) const {
  bool opening = true;
  std::vector<Attempt> runs = {{.incident = Incident{.comes_back = comes_back, .opening = true}}};
  for (const Site& site : m_vFirstCalls) {
    opening = opening && site.function != CalibrateSetData;
    runs.push_back({.incident = Incident{.function = site.function,
                                         .call = site.call,
                                         .comes_back = comes_back,
                                         .opening = opening}});
  }
  for (const unsigned int callback : m_vFirstCallbacks) {
    runs.push_back(unplugging_inside(callback, comes_back));
  }
  runs.push_back(unplugging_inside(kErrorCallback, comes_back));
  return runs;
}

/// The last frame of the first capture fails for the error's callback.
Attempt Sweep::unplugging_inside(unsigned int callback, eReturn comes_back) const {
  Attempt attempt = {.incident = Incident{.callback = callback, .comes_back = comes_back}};
  if (callback == kErrorCallback) {
    const auto last = std::find_if(
        m_vFirstCalls.rbegin(), m_vFirstCalls.rend(),
        [](const Site& site) { return site.function == ftrScanGetImageByVariableDose; });
    attempt.faults = {{last->function, last->call, false, {.fails_with = kOrdinary}}};
  }
  return attempt;
}

/// An incident inside a callback is the first capture's.
std::vector<Step> Sweep::steps_of(const Attempt& attempt) const {
  std::vector<Step> steps = m_sScenario.steps;
  if (attempt.incident.has_value() && attempt.incident->callback.has_value()) {
    std::find_if(steps.begin(), steps.end(), &is_capture)->unplugs =
        Unplugging{*attempt.incident->callback, attempt.incident->comes_back};
  }
  if (attempt.twice) {
    steps.insert(steps.end(), m_sScenario.steps.begin(), m_sScenario.steps.end());
  }
  return steps;
}

std::string Sweep::do_steps(const Attempt& attempt, Client& client, DriverModel& model) {
  std::string findings;
  for (const Step& step : steps_of(attempt)) {
    const std::string predicted = model.run(step);
    m_vLines.push_back(client.run(step));
    findings += difference(m_vLines.back(), predicted);
  }
  return findings;
}

/// A lock that somebody still holds is one that another thread does not get.
std::string Sweep::check_locks(Client& client, DriverModel& model) {
  std::string findings;
  for (const Step& step : locking_steps()) {
    const std::string predicted = model.run(step);
    findings += difference(client.run_elsewhere(step), predicted);
  }
  return findings;
}

std::string Attempt::in_words() const {
  return faults::in_words(faults) + (incident.has_value() ? incident->in_words() : "");
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
  forget_records();
  const std::optional<long> before = live_blocks();
  m_cDeadline.begin(name);
  made.findings = pass(attempt);
  made.lines = std::exchange(m_vLines, {});
  m_bRepeat = gives_text_in_vain(attempt.faults);
  m_cDeadline.begin("behind " + name);
  const std::string behind = pass({});
  m_vLines = {};
  forget_records();
  m_cDeadline.end();
  // A block for each line, and one for all. A library that a sanitizer is in leaves blocks of the C
  // library behind each time that it is loaded; there the sanitizer looks for leaks.
  made.growth = is_sanitized() ? 0
                               : live_blocks().value_or(0) - before.value_or(0) -
                                     static_cast<long>(made.lines.size() + 1);
  made.findings += behind.empty() ? "" : "behind it\n" + behind;
  return made;
}

std::string Sweep::pass(const Attempt& attempt) {
  lay_out(m_sScenario);
  DriverModel model(m_sScenario, m_dScore);
  bench().record(true);
  bench().set_faults(in_words(attempt.faults));
  model.plan(attempt.faults);
  if (attempt.incident.has_value() && !attempt.incident->callback.has_value()) {
    bench().set_scenario(attempt.incident->in_words());
    model.plan(*attempt.incident);
  }
  m_vLines.clear();
  const Threads before = threads();
  Client client;
  std::string findings = do_steps(attempt, client, model);
  findings += check_locks(client, model);
  client.destroy();
  model.destroy();
  findings += check_order(model.answers()) + check_census(model);
  if (client.stray_callbacks() != 0) {
    findings += "  callbacks came when nothing was captured\n";
  }
  if (!are_all(before)) {
    findings += "  a thread is left\n";
  }
  return findings;
}

}  // namespace Osv::faults
