#include "bench/unit.h"

#include <algorithm>
#include <array>
#include <map>
#include <mutex>

#include "driver/calibration/calibration_header.h"

namespace Osv::simulator {
namespace {

constexpr std::size_t kSerialSize = 8;
constexpr std::size_t kBlankMemorySize = 4096;
constexpr std::size_t kRoomBehindBlock = 256;

/// The payload of a unit. It takes some milliseconds and is kept: tests plug scanners in by the
/// thousand.
const std::vector<unsigned char>& kept_payload_of(unsigned int seed, const Optics& optics,
                                                  const View& view) {
  static std::mutex lock;
  static auto* const all =
      new std::map<std::array<int, 2>, std::map<unsigned int, std::vector<unsigned char>>>;
  const std::lock_guard<std::mutex> guard(lock);
  std::vector<unsigned char>& payload = (*all)[{view.width, view.height}][seed];
  if (payload.empty()) {
    payload = payload_of(optics, view);
  }
  return payload;
}

}  // namespace

Unit::Unit(const Device& device)
    : m_sDevice(device), m_sView(view_of(device.frame_width, device.frame_height)) {
  m_sDevice.serial.resize(kSerialSize);
}

std::vector<unsigned char>& Unit::memory() {
  if (!m_vMemory.has_value()) {
    m_vMemory = build_memory();
  }
  return *m_vMemory;
}

FrameMaker& Unit::frames() {
  if (m_pFrames == nullptr) {
    m_pFrames = std::make_unique<FrameMaker>(m_sDevice.seed);
  }
  return *m_pFrames;
}

void Unit::take_frame(const Exposure& exposure, const Platen& platen, unsigned char* buffer) {
  const View& seen = m_sView;
  if (seen.is_full()) {
    frames().fill(exposure, platen, buffer);
    return;
  }
  std::vector<unsigned char> full(std::size_t{kRawWidth} * kRawHeight);
  frames().fill(exposure, platen, full.data());
  const unsigned char* row =
      full.data() + std::size_t{kRawWidth} * static_cast<std::size_t>(seen.top) + seen.left;
  for (int y = 0; y < seen.height; ++y, row += kRawWidth, buffer += seen.width) {
    std::copy_n(row, seen.width, buffer);
  }
}

std::vector<unsigned char> Unit::build_memory() {
  if (m_sDevice.memory == eMemory::None) {
    return {};
  }
  std::vector<unsigned char> memory;
  if (m_sDevice.memory == eMemory::Calibrated) {
    const std::vector<unsigned char>& payload =
        kept_payload_of(m_sDevice.seed, frames().optics(), m_sView);
    std::string revision = m_sDevice.revision;
    revision.resize(ClKR9CalibrationHeader::kRevisionSize);
    ClKR9CalibrationHeader header;
    header.PutCalibrationData(payload.data(), static_cast<unsigned int>(payload.size()),
                              reinterpret_cast<const unsigned char*>(revision.data()),
                              m_sDevice.description.c_str());
    memory = header.Block();
    memory.resize(memory.size() + kRoomBehindBlock);
  } else {
    memory.resize(kBlankMemorySize);
  }
  if (m_sDevice.memory_size != 0) {
    memory.resize(m_sDevice.memory_size);
  }
  return memory;
}

void Unit::forget_frames() {
  if (m_pFrames != nullptr) {
    m_pFrames->forget();
  }
}

DeviceState Unit::state() const {
  DeviceState state;
  state.plugged_in = plugged_in;
  state.serial = m_sDevice.serial;
  state.options = options;
  state.green = green;
  state.red = red;
  state.control_bytes = m_sDevice.control_bytes;
  state.authorization_code = m_sDevice.authorization_code;
  state.secret = m_sDevice.secret;
  return state;
}

}  // namespace Osv::simulator
