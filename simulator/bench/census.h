#pragma once

#include <atomic>
#include <cstddef>

#include "bench/visibility.h"

/// @file
/// The instances that the stand-ins have given out.

namespace Osv::simulator {

enum class eInstance { Engine, Detector };

/// Any thread may call it.
class OSV_SIMULATOR_API InstanceCensus {
 public:
  void created(eInstance kind) { ++alive_of(kind); }
  void destroyed(eInstance kind) { --alive_of(kind); }

  /// Somebody gave back what is not there: no handle, or one that was given back before.
  void released_wrongly() { ++m_nWrongReleases; }

  /// A library went with instances in it.
  void left_behind(eInstance kind, std::size_t count) {
    alive_of(kind) -= static_cast<unsigned int>(count);
    m_nLeftBehind += static_cast<unsigned int>(count);
  }

  unsigned int alive(eInstance kind) const { return m_aAlive[static_cast<std::size_t>(kind)]; }
  unsigned int wrong_releases() const { return m_nWrongReleases; }
  unsigned int left_behind() const { return m_nLeftBehind; }

  /// Forgets mistakes; instances stay.
  void forget() {
    m_nWrongReleases = 0;
    m_nLeftBehind = 0;
  }

 private:
  std::atomic<unsigned int>& alive_of(eInstance kind) {
    return m_aAlive[static_cast<std::size_t>(kind)];
  }

  std::atomic<unsigned int> m_aAlive[2] = {};
  std::atomic<unsigned int> m_nWrongReleases = 0;
  std::atomic<unsigned int> m_nLeftBehind = 0;
};

/// The one of this process.
OSV_SIMULATOR_API InstanceCensus& instance_census();

}  // namespace Osv::simulator
