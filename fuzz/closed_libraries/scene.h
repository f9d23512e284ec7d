#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <set>
#include <vector>

#include "support/input.h"

/// @file
/// The scanners that the closed libraries of these programs know of, and what a client has open.

namespace Osv::fuzz {

/// Which libraries and functions are there at all.
struct Installation {
  bool logging = true;
  bool extended_functions = true;  ///< of the scanner library
  bool optional_functions = true;
  bool engine = true;
  bool detector = true;
};

struct Unit {
  bool attached = false;
  unsigned int generation = 0;  ///< a handle of an earlier one is dead
  int width = 0;
  int height = 0;
};

/// A device that a client has opened: its unit as it was then.
struct OpenDevice {
  unsigned int interface = 0;
  Unit unit;
};

class Scene {
 public:
  static constexpr unsigned int kInterfaces = 4;  ///< that can have a scanner

  /// Begins anew: two bytes for what is there, two for the size of frames, then the memory of all
  /// scanners, or none for a good one.
  void begin(Input& input);

  /// Requires that everything was closed.
  void end();

  /// Takes a scanner off, or puts one there, of a size that the value tells.
  void change_units(std::uint32_t value);

  const Installation& installation() const { return m_installation; }
  bool is_attached(int interface) const;
  std::vector<std::uint8_t>& memory() { return m_memory; }

  /// @name Devices
  /// A handle is a number in the disguise of a pointer. A call with one that was closed is a
  /// finding, and so is one that was never given; null is not.
  /// @{
  void* open(int interface);
  void close(void* device);
  OpenDevice* find(void* device);  ///< null for a null handle, and for one whose unit went
  /// @}

  /// @name Engines
  /// The same for instances of the calibration engine; a null one is a finding too.
  /// @{
  void* create_engine();
  void destroy_engine(void* engine);
  void require_engine(void* engine) const;
  /// @}

  /// @name Detectors
  /// Likewise, a null one is none. The detector's library is started once at a time, and takes its
  /// instances along when it is stopped.
  /// @{
  void start_detection();
  void stop_detection();
  void* create_detector();
  void destroy_detector(void* detector);
  void require_detector(void* detector) const;
  /// @}

  std::uint32_t last_error = 0;
  unsigned int unnamed_failures = 0;  ///< of which the number was asked for, and is 0

 private:
  Installation m_installation;
  std::array<Unit, kInterfaces> m_units;
  std::vector<std::uint8_t> m_memory;
  std::map<std::uintptr_t, OpenDevice> m_devices;
  std::set<std::uintptr_t> m_engines;
  std::set<std::uintptr_t> m_detectors;
  bool m_detects = false;
  std::uintptr_t m_last_handle = 0;
};

Scene& scene();

/// Has the loader find what is there, from now on.
void install(const Installation& installation);

}  // namespace Osv::fuzz
