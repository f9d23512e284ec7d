#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "bench/finger.h"
#include "bench/frame_maker.h"
#include "bench/functions.h"
#include "bench/pacer.h"
#include "bench/unit.h"
#include "bench/visibility.h"
#include "ostrevanhvk3_simulator/bench.h"

/// @file
/// The scene: scanners, handles, and what lies on the platens.

namespace Osv::simulator {

/// Error numbers of the scanner library.
/// @{
inline constexpr std::uint32_t kNotSupported = 8;
inline constexpr std::uint32_t kInvalidParameter = 87;
inline constexpr std::uint32_t kNoDevice = 259;
inline constexpr std::uint32_t kEmptyFrame = 4306;
inline constexpr std::uint32_t kWrongAuthorizationCode = 0x20000006;
/// @}

/// Contact of the finger in a frame of the timeline, counted from 0: 0 none, 1 settled.
float contact_at(const Timeline& timeline, unsigned int frame);

/// Any thread may call it. Operations for the scanner library give its error numbers, 0 for
/// success.
class OSV_SIMULATOR_API Scene {
 public:
  Scene();

  /// @name For the scanner library
  /// @{

  /// Opens the scanner at an interface; a handle of 0 and an error when there is none.
  std::uint32_t open(int interface, std::uint32_t& handle);
  std::uint32_t close(std::uint32_t handle);

  /// Whether the list is to show a scanner at that interface.
  bool listed(unsigned int interface) const;
  std::uint32_t set_base_interface(int interface);
  int base_interface() const;

  /// Does `work` on the scanner of a handle, which takes a `Unit&` and gives an error number.
  template <class Work>
  std::uint32_t with_unit(std::uint32_t handle, Work work) {
    const std::lock_guard<std::mutex> lock(m_cLock);
    Unit* const unit = unit_of(handle);
    return unit == nullptr ? kNoDevice : work(*unit);
  }

  /// Takes a frame into `buffer`, at its time. A dose frame moves the scene's clock on.
  std::uint32_t take_frame(std::uint32_t handle, eLight light, int dose, unsigned char* buffer);

  /// `kEmptyFrame` when nothing touches the platen.
  std::uint32_t look_for_finger(std::uint32_t handle);
  /// @}

  /// @name For the bench, see there
  /// @{
  void reset();
  void plug_in(unsigned int interface, const Device& device);
  void unplug(unsigned int interface);
  void plug_in_again(unsigned int interface);
  void unplug_all();
  DeviceState state(unsigned int interface) const;
  std::vector<unsigned char> memory(unsigned int interface);
  void set_memory(unsigned int interface, const std::vector<unsigned char>& bytes);
  void list_from_base(bool on);
  void set_timeline(const Timeline& timeline);
  unsigned int frame_count() const;
  void set_finger(const GrayImage& picture);
  GrayImage finger() const;
  void set_pace(unsigned int frames_per_second) { m_cPacer.set(frames_per_second); }
  /// @}

 private:
  void forget_units();

  struct OpenHandle {
    unsigned int interface = 0;
    unsigned int plugged = 0;  // `Unit::plugged` when it was opened
  };

  Unit* unit_of(std::uint32_t handle);
  Unit& known_unit(unsigned int interface) const;
  const Finger& laid_down_finger();

  Pacer m_cPacer;
  mutable std::mutex m_cLock;  // guards all below
  std::array<std::unique_ptr<Unit>, kInterfaceCount> m_aUnits;
  std::map<std::uint32_t, OpenHandle> m_mHandles;
  std::uint32_t m_nLastHandle = 0;
  int m_nBaseInterface = 0;
  bool m_bListFromBase = false;
  Timeline m_sTimeline;
  unsigned int m_nFrames = 0;
  GrayImage m_sPicture;
  std::optional<Finger> m_sFinger;  // the picture on the platen, made when a frame needs it
};

/// The scene of this process, for the scanner stand-in.
OSV_SIMULATOR_API Scene& scene();

}  // namespace Osv::simulator
