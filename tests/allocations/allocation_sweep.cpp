#include "allocations/allocation_sweep.h"

#include <exception>
#include <new>
#include <numeric>
#include <set>
#include <utility>

#include "allocations/explanation.h"
#include "allocations/shortage.h"
#include "faults/client.h"
#include "faults/heap.h"
#include "faults/stage.h"
#include "faults/threads.h"
#include "support/closed_libraries.h"

namespace Osv::allocations {

using faults::Client;
using faults::DriverModel;
using faults::Step;

namespace {

// Reading it takes memory.
constexpr char kConfiguration[] =
    "# a line that is longer than what a string keeps within itself\n"
    "[SDK]\n"
    "ANameThatIsLongerThanThat = a value that is longer than that\n";

}  // namespace

std::string Attempt::in_words() const {
  return first == 0 ? "all memory"
                    : "allocation " + std::to_string(first) + (lasting ? " and all behind it" : "");
}

AllocationSweep::AllocationSweep(const faults::Scenario& scenario)
    : m_cConfiguration(kConfiguration),
      m_sScenario(scenario),
      m_dScore(faults::own_score(scenario)) {
  (void)pass({});  // some come once in a process
  (void)pass({});
}

std::vector<Attempt> AllocationSweep::attempts() const {
  std::vector<Attempt> all;
  for (std::size_t first = 1; first <= m_nAllocations; ++first) {
    all.push_back({first, false});
    all.push_back({first, true});
  }
  return all;
}

std::string AllocationSweep::findings_of(const Attempt& attempt) {
  constexpr int kTries = 4;
  std::string findings = "  leaves memory behind\n";
  // What some cache has taken is no leak: that grows each time.
  for (int tries = 0; tries < kTries; ++tries) {
    const Run made = run(attempt);
    if (!made.findings.empty() || made.growth <= 0) {
      findings = made.findings;
      break;
    }
  }
  ++m_cEnds[m_sEnd.empty() ? "nothing in any step" : m_sEnd];
  return findings.empty() ? "" : m_sScenario.name + ": " + attempt.in_words() + "\n" + findings;
}

AllocationSweep::Run AllocationSweep::run(const Attempt& attempt) {
  const std::string name = m_sScenario.name + ": " + attempt.in_words();
  Run made;
  simulator::ClosedLibraries::forget_openings();
  const long before = faults::live_blocks().value_or(0);
  m_cDeadline.begin(name);
  m_sEnd.clear();
  made.findings = pass(attempt);
  m_cDeadline.begin("behind " + name);
  const std::string behind = pass({});
  simulator::ClosedLibraries::forget_openings();
  m_cDeadline.end();
  made.findings += behind.empty() ? "" : "behind it\n" + behind;
  made.growth = faults::live_blocks().value_or(0) - before;
  return made;
}

/// A client that does the steps of the scenario. Its frame grabber is destroyed without memory,
/// too.
std::string AllocationSweep::pass(const Attempt& attempt) {
  faults::lay_out(m_sScenario);
  Explanations explanations = {DriverModel(m_sScenario, m_dScore)};
  const faults::Threads before = faults::threads();
  const Shortage shortage(attempt.first, attempt.lasting);
  std::string findings;
  try {
    Client client;
    if (!Shortage::failures(0).empty()) {
      explanations.push_back(explanations.front());
      explanations.back().make_dummy();
      m_sEnd = "a frame grabber that is none, or has no log";
    }
    findings = do_steps(client, explanations);
    Shortage::pause();
    findings += check_locks(client, explanations);
    Shortage::go_on();
    client.destroy();
    findings += client.stray_callbacks() == 0 ? "" : "  callbacks came when nothing was captured\n";
  } catch (const std::bad_alloc&) {
    // Getting the frame grabber may end so, when there is no memory for the report of it either.
    m_sEnd = m_sEnd.empty() ? "std::bad_alloc out of GetFrameGrabber" : m_sEnd;
    findings += attempt.lasting ? "" : "  getting the frame grabber lets std::bad_alloc out\n";
  }
  Shortage::pause();
  m_nAllocations = attempt.first == 0 ? Shortage::allocations() : m_nAllocations;
  findings += check_end(explanations);
  findings += faults::are_all(before) ? "" : "  a thread is left\n";
  return findings;
}

std::string AllocationSweep::do_steps(Client& client, Explanations& explanations) {
  std::string findings;
  for (std::size_t i = 0; i < m_sScenario.steps.size() && findings.empty(); ++i) {
    Shortage::begin_step(i + 1);
    findings = do_step(client, i, explanations);
  }
  return findings;
}

/// @param explanations in and out; those that do not fit what the client sees go
std::string AllocationSweep::do_step(Client& client, std::size_t index,
                                     Explanations& explanations) {
  const Step& step = m_sScenario.steps[index];
  std::string line;
  try {
    line = client.run(step);
  } catch (const std::exception& failure) {
    if (gets_grabber(step)) {
      for (DriverModel& model : explanations) {
        model.destroy();
      }
      throw;
    }
    return "  step " + std::to_string(index + 1) + " lets out: " + failure.what() + "\n";
  }
  const std::vector<FailedAllocation> failures = Shortage::failures(index + 1);
  std::set<std::string> predicted;
  Explanations fitting;
  for (const DriverModel& model : explanations) {
    for (const Explanation& way : ways_of(model, step, failures)) {
      const std::string wrong = faults::check_counts(way.model.answers());
      if (wrong.empty() && faults::difference(line, way.line).empty()) {
        m_sEnd = m_sEnd.empty() && !failures.empty() ? way.end : m_sEnd;
        fitting.push_back(way.model);
      } else {
        predicted.insert("  " + way.line + "\n" + wrong);
      }
    }
  }
  if (!fitting.empty()) {
    explanations = std::move(fitting);
    return "";
  }
  return std::accumulate(predicted.begin(), predicted.end(), "  " + line + "\n  and not one of\n");
}

/// A lock that somebody still holds is one that another thread does not get.
std::string AllocationSweep::check_locks(Client& client, Explanations& explanations) {
  const Step step = {faults::eStep::List};
  const std::string line = client.run_elsewhere(step);
  std::string findings;
  bool fits = false;
  for (DriverModel& model : explanations) {
    const std::string wrong = faults::difference(line, model.run(step));
    fits = fits || wrong.empty();
    findings += wrong;
    model.destroy();
  }
  return fits ? "" : findings;
}

std::string AllocationSweep::check_end(const Explanations& explanations) const {
  std::string findings;
  for (const DriverModel& model : explanations) {
    const std::string wrong = faults::check_counts(model.answers()) + faults::check_census(model);
    if (wrong.empty()) {
      return "";
    }
    findings += wrong;
  }
  return findings;
}

}  // namespace Osv::allocations
