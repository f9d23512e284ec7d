#pragma once

#include <utility>
#include <vector>

#include "foundation/wait.h"

/// @file
/// Waits that are recorded and not made.

namespace Osv::testing_support {

/// Takes the place of the waits while it lives. One object at a time, on one thread.
class WaitJournal {
 public:
  WaitJournal() : m_before(ExchangeWaitFunction(&WaitJournal::note)) { waits_so_far().clear(); }
  ~WaitJournal() { ExchangeWaitFunction(m_before); }
  WaitJournal(const WaitJournal&) = delete;
  WaitJournal& operator=(const WaitJournal&) = delete;

  /// Kind and milliseconds of each wait.
  const std::vector<std::pair<eWait, int>>& waits() const { return waits_so_far(); }

 private:
  static std::vector<std::pair<eWait, int>>& waits_so_far() {
    static std::vector<std::pair<eWait, int>> waits;
    return waits;
  }

  static void note(eWait kind, int milliseconds) {
    waits_so_far().emplace_back(kind, milliseconds);
  }

  WaitFunction m_before;
};

}  // namespace Osv::testing_support
