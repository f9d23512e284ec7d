#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "faults/effect.h"
#include "faults/scenario.h"

/// @file
/// What the closed libraries answer, by the words of their contract and the faults of a run.

namespace Osv::faults {

/// How an operation fails.
struct Failure {
  long worker_number = 0;
  long client_number = 0;
  std::string text;
};

enum class eThread { Client, Worker };

/// The plug-in's memory runs out.
struct Exhaustion {
  std::size_t calls = 0;  ///< so many calls into the closed libraries come before
  eThread thread = {};
  Failure failure = {};  ///< that it ends in
  bool no_worker =
      false;  ///< it was the worker's own memory: it does not start, and nobody is told
};

/// A handle of a device as the model has it.
struct Handle {
  unsigned int interface = 0;
  unsigned int plugged = 0;
  bool open = false;
};

/// The devices, the last error and the count of calls.
class Answers {
 public:
  using Counts = std::array<unsigned int, simulator::kFunctionCount>;

  explicit Answers(const Scenario& scenario);

  /// Counts calls for these faults from now on, in place of others.
  void plan(const Faults& faults);

  /// The same for an unplugging.
  void plan(const Incident& incident);

  /// Memory runs out once, in the calls that come or in `allocate`.
  void plan(const Exhaustion& exhaustion) { m_sExhaustion = exhaustion; }

  /// Whether memory has run out as planned.
  bool has_run_out() const { return !m_sExhaustion.has_value(); }

  /// The plug-in needs memory and calls nobody before and behind. Everywhere else it needs memory
  /// in front of a call.
  /// @throws Failure
  void allocate(eThread thread);

  /// The same on whichever thread the present call of the client is worked on.
  void allocate();

  /// Whether a worker gets no memory to start with.
  bool lacks_worker();

  /// The library has no such function: who wants to call it fails, and it is not called.
  void lack(eFunction function, const Failure& failure) { m_cMissing[function] = failure; }
  bool lacks(eFunction function) const { return m_cMissing.count(function) != 0; }

  /// All functions are there again.
  void find_all() { m_cMissing.clear(); }

  /// A call, with the effect that it has.
  Effect call(eFunction function);

  /// The status of a call of the scanner library, which fails with `own_error` by itself.
  int status(eFunction function, long own_error, Effect& effect);
  bool succeeds(eFunction function, long own_error = 0);

  /// The code of a call of an engine or detector, which would be `own_code`.
  long code(eFunction function, long own_code, Effect& effect);

  Handle open(unsigned int interface);
  void close(const Handle& handle);

  /// The scanner library's last error, as it tells it.
  long last_error();

  /// 0, or the number of a call with a handle that is none or of a device that went.
  long error_of(const Handle& handle) const;

  std::vector<unsigned int> listed() const;
  bool set_base(unsigned int interface);
  std::optional<Attached> device_at(unsigned int interface) const;

  void unplug(unsigned int interface);
  void plug_in_again(unsigned int interface);

  /// The scanner at interface 0 goes, and comes back or not.
  void unplug(eReturn comes_back);

  const Counts& counts() const { return m_aCounts; }

  /// All calls in their order.
  const std::vector<eFunction>& calls() const { return m_vCalls; }

  unsigned int open_handles() const { return m_nOpenHandles; }

 private:
  struct Unit {
    Attached device;
    bool plugged_in = true;
    unsigned int plugged = 0;
  };

  void replace(const Attached& device);

  std::vector<Unit> m_vUnits;
  Faults m_vFaults;
  std::optional<Incident> m_sIncident;
  std::optional<Exhaustion> m_sExhaustion;
  std::map<eFunction, Failure> m_cMissing;
  Counts m_aPlanCounts = {};
  Counts m_aCounts = {};
  std::vector<eFunction> m_vCalls;
  long m_nLastError = 0;
  unsigned int m_nBase = 0;
  unsigned int m_nOpenHandles = 0;
};

}  // namespace Osv::faults
