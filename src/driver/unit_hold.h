#pragma once

#include <mutex>

namespace Osv::lx {

/// Keeps the unit that a frame is fetched from, since another one may have larger frames: an open
/// scanner can't be closed meanwhile, and a closed one can't be opened.
class UnitHold {
 public:
  UnitHold(std::recursive_mutex& unit, std::recursive_mutex& opening)
      : m_cUnit(unit), m_cOpening(opening) {}

  /// For a scanner that is open, or will be before the fetch: openings wait for no frame.
  void LetOpeningsIn() { m_cOpening.unlock(); }

  /// Once the frame is fetched, or can't be.
  void LetGo() {
    if (m_cOpening.owns_lock()) {
      m_cOpening.unlock();
    }
    m_cUnit.unlock();
  }

 private:
  std::unique_lock<std::recursive_mutex> m_cUnit;
  std::unique_lock<std::recursive_mutex> m_cOpening;
};

}  // namespace Osv::lx
