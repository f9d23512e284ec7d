#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "bench/frame_maker.h"
#include "bench/visibility.h"
#include "ostrevanhvk3_simulator/bench.h"

/// @file
/// One simulated scanner.

namespace Osv::simulator {

/// The hardware behind one interface, plugged in or not. The scene's lock guards it.
class OSV_SIMULATOR_API Unit {
 public:
  /// @throws std::invalid_argument for frames that no scanner has
  explicit Unit(const Device& device);

  /// @name What the scanner library reads and writes
  /// @{
  unsigned char model() const { return m_sDevice.model; }
  const Version& second_version() const { return m_sDevice.second_version; }
  const Version& third_version() const { return m_sDevice.third_version; }
  std::string& serial() { return m_sDevice.serial; }  ///< always 8 bytes
  SevenBytes& control_bytes() { return m_sDevice.control_bytes; }
  SevenBytes& authorization_code() { return m_sDevice.authorization_code; }
  SevenBytes& secret() { return m_sDevice.secret; }

  /// The extended memory, with its block from the first use on.
  std::vector<unsigned char>& memory();

  /// Fills `buffer` with what the unit sees.
  void take_frame(const Exposure& exposure, const Platen& platen, unsigned char* buffer);

  const View& view() const { return m_sView; }

  std::uint32_t options = 0;
  unsigned char green = 0;
  unsigned char red = 0;
  /// @}

  bool plugged_in = true;
  unsigned int plugged = 1;  ///< how often it was plugged in; handles of an earlier time are dead

  /// Takes the finger's change to frames already made.
  void forget_frames();

  DeviceState state() const;

 private:
  FrameMaker& frames();
  std::vector<unsigned char> build_memory();

  Device m_sDevice;
  View m_sView;
  std::optional<std::vector<unsigned char>> m_vMemory;
  std::unique_ptr<FrameMaker> m_pFrames;
};

}  // namespace Osv::simulator
