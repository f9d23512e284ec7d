#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "support/input.h"

/// @file
/// What the closed libraries of these programs answer. A run is a script of faults between calls
/// that go well; when it has ended, all goes well.

namespace Osv::fuzz {

enum class eFault : std::uint8_t {
  None,
  Fails,           ///< with a number of the script
  Odd,             ///< an answer that no good library gives, each function its own
  FailsFromNowOn,  ///< this function, with the same number
  Unplugs,         ///< a scanner goes, comes or is replaced before the call
};

struct Fault {
  eFault kind = eFault::None;
  std::uint32_t value = 0;
};

/// One thread at a time is in a closed library: the client's while the worker waits for it, or the
/// worker.
class Answers {
 public:
  /// Begins with other faults: records of the number of calls before, kind and value.
  void begin(Bytes script);

  /// What the next call of a function is to do.
  Fault next(const char* function);

  /// Notes a number of the scanner library or of the engine that the plug-in gets to see, as it is
  /// and with its sign; that of a scanner which is not there as the one that the plug-in makes of
  /// it.
  /// @{
  std::uint32_t tell(std::uint32_t number);
  long tell(long number);
  /// @}

  /// The number of a scanner's failure: one that the plug-in treats by value, mostly.
  std::uint32_t scanner_error(std::uint32_t value);

  /// The code of an engine's or detector's failure, likewise; never 0, and not noted.
  static long code(std::uint32_t value);

  /// Every number that was noted since the beginning.
  const std::set<long>& told() const { return m_told; }

 private:
  void take_record();

  std::vector<std::uint8_t> m_script;
  std::size_t m_position = 0;
  unsigned int m_calls_before = 0;  // the next fault
  Fault m_next;
  std::map<std::string, Fault> m_lasting;
  std::set<long> m_told;
};

Answers& answers();

}  // namespace Osv::fuzz
