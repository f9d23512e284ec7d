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
  std::size_t blocks = 0;    ///< that they are in
  std::size_t descriptors = 0;
  std::size_t threads = 0;
};

Footprint footprint(long frames);

/// Footprints of the same point of a work that repeats.
class Curve {
 public:
  /// @param points that come at most: their own memory is not to grow meanwhile
  explicit Curve(std::size_t points) { m_vPoints.reserve(points); }

  void add(const Footprint& footprint) { m_vPoints.push_back(footprint); }

  /// What grew, in words; empty when nothing did. Behind the first rounds descriptors and threads
  /// stay the same, blocks of memory and the bytes in them come down to the same, and the resident
  /// memory doesn't rise.
  std::string growth() const;

 private:
  std::vector<Footprint> m_vPoints;
};

}  // namespace Osv::soak
