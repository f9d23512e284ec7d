#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "allocations/shortage.h"
#include "faults/deadline.h"
#include "faults/driver_model.h"
#include "faults/scenario.h"
#include "support/configuration_file.h"

/// @file
/// The sweep: each scenario with each allocation of the plug-in failing.

namespace Osv::faults {
class Client;
}

namespace Osv::allocations {

/// Which allocation fails, counted from 1; 0: none.
struct Attempt {
  std::size_t first = 0;
  bool lasting = false;  ///< and all behind it

  std::string in_words() const;
};

/// The allocations of one scenario, and the runs in which they fail. One at a time.
class AllocationSweep {
 public:
  /// Runs the scenario with all its memory, to count its allocations.
  explicit AllocationSweep(const faults::Scenario& scenario);

  std::size_t allocations() const { return m_nAllocations; }

  /// How often the first failed allocation of a run came to what.
  const std::map<std::string, std::size_t>& ends() const { return m_cEnds; }

  /// Every allocation, once and lasting.
  std::vector<Attempt> attempts() const;

  /// Runs the scenario with memory that fails, and then with all of it.
  /// @return what was wrong, empty for nothing
  std::string findings_of(const Attempt& attempt);

 private:
  /// What the client may have seen up to now, one for each way that explains it.
  using Explanations = std::vector<faults::DriverModel>;

  /// What has come of a client by now.
  struct Pass {
    bool lasting = false;
    Explanations explanations;
    std::string findings = {};
    bool has_grabber = true;

    bool goes_on() const { return has_grabber && findings.empty(); }
  };

  struct Run {
    std::string findings;
    long growth = 0;  ///< blocks of memory that are there behind it and were not before
  };

  Run run(const Attempt& attempt);
  std::string pass(const Attempt& attempt);
  void be_client(Pass& pass);
  template <typename Get>
  void get_grabber(Pass& pass, Get get);
  void do_step(faults::Client& client, std::size_t index, Pass& pass);
  void explain(const faults::Step& step, const std::string& line,
               const std::vector<FailedAllocation>& failures, Pass& pass);
  void check_locks(faults::Client& client, Pass& pass) const;
  static std::string check_end(const Explanations& explanations);

  const test::ConfigurationFile m_cConfiguration;
  const faults::Scenario& m_sScenario;
  double m_dScore;
  faults::Deadline m_cDeadline;
  std::size_t m_nAllocations = 0;
  std::string m_sEnd;  // of this run, empty until then
  std::map<std::string, std::size_t> m_cEnds;
};

}  // namespace Osv::allocations
