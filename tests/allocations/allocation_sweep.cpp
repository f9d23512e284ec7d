#include "allocations/allocation_sweep.h"

#include <exception>
#include <new>
#include <numeric>
#include <optional>
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
  const faults::Threads before = faults::threads();
  const Shortage shortage(attempt.first, attempt.lasting);
  Pass pass = {.lasting = attempt.lasting, .explanations = {DriverModel(m_sScenario, m_dScore)}};
  try {
    be_client(pass);
  } catch (const std::exception& failure) {
    pass.findings += std::string("  the plug-in lets out: ") + failure.what() + "\n";
  }
  Shortage::pause();
  m_nAllocations = attempt.first == 0 ? Shortage::allocations() : m_nAllocations;
  pass.findings += check_end(pass.explanations);
  pass.findings += faults::are_all(before) ? "" : "  a thread is left\n";
  return pass.findings;
}

void AllocationSweep::be_client(Pass& pass) {
  std::optional<Client> client;
  get_grabber(pass, [&] { client.emplace(); });
  if (pass.has_grabber && !Shortage::failures(0).empty()) {
    pass.explanations.push_back(pass.explanations.front());
    pass.explanations.back().make_dummy();
    m_sEnd = "a frame grabber that is none, or has no log";
  }
  for (std::size_t i = 0; i < m_sScenario.steps.size() && pass.goes_on(); ++i) {
    Shortage::begin_step(i + 1);
    do_step(*client, i, pass);
  }
  if (pass.goes_on()) {
    Shortage::pause();
    check_locks(*client, pass);
    Shortage::go_on();
    client->destroy();
    pass.findings += client->stray_callbacks() == 0 ? "" : "  a callback came out of place\n";
  }
}

/// Getting the frame grabber may let std::bad_alloc out, when there is no memory for the report of
/// it either.
template <typename Get>
void AllocationSweep::get_grabber(Pass& pass, Get get) {
  try {
    get();
  } catch (const std::bad_alloc&) {
    if (!pass.lasting) {
      throw;
    }
    m_sEnd = m_sEnd.empty() ? "std::bad_alloc out of GetFrameGrabber" : m_sEnd;
    pass.has_grabber = false;
  }
}

void AllocationSweep::do_step(Client& client, std::size_t index, Pass& pass) {
  const Step& step = m_sScenario.steps[index];
  std::string line;
  const auto run = [&] { line = client.run(step); };
  if (gets_grabber(step)) {
    get_grabber(pass, run);
  } else {
    run();
  }
  if (pass.has_grabber) {
    explain(step, line, Shortage::failures(index + 1), pass);
  } else {
    for (DriverModel& model : pass.explanations) {
      model.destroy();
    }
  }
}

/// Explanations that do not fit what the client has seen go.
void AllocationSweep::explain(const Step& step, const std::string& line,
                              const std::vector<FailedAllocation>& failures, Pass& pass) {
  std::set<std::string> predicted;
  Explanations fitting;
  for (const DriverModel& model : pass.explanations) {
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
  if (fitting.empty()) {
    pass.findings +=
        std::accumulate(predicted.begin(), predicted.end(), "  " + line + "\n  and not one of\n");
  } else {
    pass.explanations = std::move(fitting);
  }
}

/// A lock that somebody still holds is one that another thread does not get.
void AllocationSweep::check_locks(Client& client, Pass& pass) const {
  std::vector<std::string> lines;
  for (const Step& step : faults::locking_steps()) {
    lines.push_back(client.run_elsewhere(step));
  }
  std::string findings;
  bool fits = false;
  for (DriverModel& model : pass.explanations) {
    std::string wrong;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      wrong += faults::difference(lines[i], model.run(faults::locking_steps()[i]));
    }
    fits = fits || wrong.empty();
    findings += wrong;
    model.destroy();
  }
  pass.findings += fits ? "" : findings;
}

std::string AllocationSweep::check_end(const Explanations& explanations) {
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
