#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// @file
/// What a process holds, and whether it keeps holding the same.

namespace Osv::soak {

/// What this process holds now.
struct Footprint {
  long frames = 0;           ///< delivered up to now
  std::size_t resident = 0;  ///< bytes of memory that are in use and in the machine's memory
  std::size_t heap = 0;      ///< bytes that are allocated
  std::size_t descriptors = 0;
  std::size_t threads = 0;
};

Footprint footprint(long frames);

/// Footprints of the same point of a work that repeats.
class Curve {
 public:
  void add(const Footprint& footprint) { m_vPoints.push_back(footprint); }

  /// What grew, in words; empty when nothing did. Descriptors and threads stay what they were at
  /// the first point. Memory has the first half of the run to reach its size; what it holds at most
  /// in the second half may lie above that by no more than an allocator's disorder.
  std::string growth() const;

 private:
  std::vector<Footprint> m_vPoints;
};

}  // namespace Osv::soak
