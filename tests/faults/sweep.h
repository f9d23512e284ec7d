#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "faults/client.h"
#include "faults/deadline.h"
#include "faults/driver_model.h"
#include "faults/effect.h"
#include "faults/scenario.h"

/// @file
/// The sweep: each scenario with each fault of each of its calls.

namespace Osv::faults {

/// What a run is about.
struct Attempt {
  Faults faults = {};
  std::optional<Incident> incident = {};
  bool twice = false;  ///< the steps once more on the same frame grabber

  std::string in_words() const;
};

/// The faults of one scenario, and the runs with them. One at a time.
class Sweep {
 public:
  /// Learns the scenario's calls from the model. That the plug-in makes the same ones is what each
  /// run compares.
  explicit Sweep(const Scenario& scenario);

  const Scenario& scenario() const { return m_sScenario; }

  /// Calls into the closed libraries that can answer with a fault.
  std::size_t call_sites() const { return m_vSites.size(); }

  /// Every call with every kind of fault that it can answer with, once and lasting.
  std::vector<Attempt> single_faults() const;

  /// Behind one fault of each call a second one where the recovery comes along.
  std::vector<Attempt> double_faults() const;

  /// An unplugging behind each call up to the end of the first capture, and inside each callback of
  /// it: the error's too, of a frame that fails otherwise.
  std::vector<Attempt> unpluggings(eReturn comes_back) const;

  /// Whether a run is the same as another: its lasting fault meets one call only, or its second
  /// fault none.
  bool is_repeat(const Attempt& attempt) const;

  /// What the client had of the steps of the last run, fault-free ones left aside.
  const std::vector<std::string>& lines() const { return m_vLines; }

  /// Whether the last run was one again that is made without the text of its fault: no library was
  /// asked for a text.
  bool was_repeat() const { return m_bRepeat; }

  /// Runs the scenario with faults, and then without.
  /// @return what was wrong, empty for nothing
  std::string findings_of(const Attempt& attempt);

 private:
  struct Run {
    std::string findings;
    std::vector<std::string> lines;
    long growth = 0;  ///< blocks of memory that are there behind it and were not before
  };
  struct Site {
    eFunction function = {};
    unsigned int call = 0;
    std::map<eFunction, unsigned int> before;  ///< calls so far of those that fail second
  };

  Run run(const Attempt& attempt);
  std::string pass(const Attempt& attempt);
  std::vector<Step> steps_of(const Attempt& attempt) const;
  std::string do_steps(const Attempt& attempt, Client& client, DriverModel& model);
  std::string check_locks(Client& client, DriverModel& model);
  void learn_sites(const Answers& answers, std::size_t first_calls);
  Attempt unplugging_inside(unsigned int callback, eReturn comes_back) const;

  const Scenario& m_sScenario;
  Deadline m_cDeadline;
  double m_dScore = 0;
  std::vector<Site> m_vSites;
  std::vector<Site> m_vFirstCalls;              // all calls up to the end of the first capture
  std::vector<unsigned int> m_vFirstCallbacks;  // of the first capture, each kind once
  std::vector<std::string> m_vLines;
  bool m_bRepeat = false;
};

}  // namespace Osv::faults
