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
#include "bench/motion.h"
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

/// Any thread may call it. Operations for the scanner library give its error numbers, 0 for
/// success.
class OSV_SIMULATOR_API Scene {
 public:
  static constexpr unsigned int kDefaultPrint = 1;  // seed of the print that a scene begins with

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

  /// Handles of all devices that are not closed, dead ones too.
  unsigned int open_handles() const;
  std::vector<unsigned char> memory(unsigned int interface);
  void set_memory(unsigned int interface, const std::vector<unsigned char>& bytes);
  void list_from_base(bool on);
  void set_leds(unsigned int interface, unsigned char green, unsigned char red);
  void set_authorization_code(unsigned int interface, const SevenBytes& code);
  void set_secret(unsigned int interface, const SevenBytes& bytes);
  void set_timeline(const Timeline& timeline);
  void touch_down();
  void lift_off();
  void roll(eRoll way, unsigned int frames);
  unsigned int frame_count() const;
  void set_finger(const GrayImage& picture);
  void set_print(unsigned int seed, ePrint shape);
  GrayImage finger() const;
  void set_finger_kind(eFingerKind kind);
  void set_skin(eSkin skin);
  void set_pressure(unsigned int percent);
  void set_dirt(unsigned int percent);
  void set_pace(unsigned int frames_per_second) { m_cPacer.set(frames_per_second); }

  /// The scanners that were ever plugged in, and the finger, in words.
  std::string in_words() const;
  /// @}

 private:
  void forget_units();

  static constexpr unsigned int kWhole = 100;  // percent

  struct OpenHandle {
    unsigned int interface = 0;
    unsigned int plugged = 0;  // `Unit::plugged` when it was opened
  };

  Unit* unit_of(std::uint32_t handle);
  Unit& known_unit(unsigned int interface) const;
  void move(const Motion& motion);
  Touch touch() const;
  const GrayImage& picture() const;
  const Platen& laid_out_platen();
  void forget_platen();

  Pacer m_cPacer;
  mutable std::mutex m_cLock;  // guards all below
  std::array<std::unique_ptr<Unit>, kInterfaceCount> m_aUnits;
  std::map<std::uint32_t, OpenHandle> m_mHandles;
  std::uint32_t m_nLastHandle = 0;
  int m_nBaseInterface = 0;
  bool m_bListFromBase = false;
  Motion m_cMotion{Timeline()};
  unsigned int m_nFrames = 0;
  Touch m_sLastTouch;  // as the last frame has it
  /// The picture of the finger, null for the built-in print, which is made when it is needed.
  std::shared_ptr<const GrayImage> m_pPicture;
  unsigned int m_nPrintSeed = kDefaultPrint;
  ePrint m_ePrintShape = ePrint::Plain;
  eFingerKind m_eKind = eFingerKind::Live;
  eSkin m_eSkin = eSkin::Normal;
  unsigned int m_nPressure = kWhole;
  unsigned int m_nDirt = 0;
  std::optional<Platen> m_sPlaten;  // made when a frame needs it
};

/// The scene of this process, for the scanner stand-in.
OSV_SIMULATOR_API Scene& scene();

}  // namespace Osv::simulator
