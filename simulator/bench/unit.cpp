#include "bench/unit.h"

#include <algorithm>
#include <map>
#include <mutex>

#include "driver/calibration/calibration_header.h"

namespace Osv::simulator {
namespace {

constexpr std::size_t kSerialSize = 8;
constexpr std::size_t kBlankMemorySize = 4096;
constexpr std::size_t kRoomBehindBlock = 256;

/// The payload of the optics of a seed. It takes some milliseconds and is kept: tests plug scanners
/// in by the thousand.
const std::vector<unsigned char>& payload_of_seed(unsigned int seed, const Optics& optics) {
  static std::mutex lock;
  static auto* const all = new std::map<unsigned int, std::vector<unsigned char>>;
  const std::lock_guard<std::mutex> guard(lock);
  std::vector<unsigned char>& payload = (*all)[seed];
  if (payload.empty()) {
    payload = payload_of(optics);
  }
  return payload;
}

}  // namespace

Unit::Unit(const Device& device) : m_sDevice(device) { m_sDevice.serial.resize(kSerialSize); }

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

std::vector<unsigned char> Unit::build_memory() {
  if (m_sDevice.memory == eMemory::None) {
    return {};
  }
  std::vector<unsigned char> memory;
  if (m_sDevice.memory == eMemory::Calibrated) {
    const std::vector<unsigned char>& payload = payload_of_seed(m_sDevice.seed, frames().optics());
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
