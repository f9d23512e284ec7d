#pragma once

#include <mutex>

namespace Osv::lx {

/// Keeps the unit that a frame is fetched from, since another one may have larger frames: an open
/// scanner can't be closed meanwhile, and with openings kept out a closed one can't be opened.
class UnitHold {
 public:
  explicit UnitHold(std::recursive_mutex& unit) : m_cUnit(unit) {}

  void KeepOpeningsOut(std::recursive_mutex& opening) { m_cOpening = Lock(opening); }

  void LetOpeningsIn() {
    if (m_cOpening.owns_lock()) {
      m_cOpening.unlock();
    }
  }

  /// Once the frame is fetched, or can't be.
  void LetGo() {
    LetOpeningsIn();
    m_cUnit.unlock();
  }

 private:
  using Lock = std::unique_lock<std::recursive_mutex>;

  Lock m_cUnit;
  Lock m_cOpening;
};

}  // namespace Osv::lx
