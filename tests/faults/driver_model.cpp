#include "faults/driver_model.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "ostrevanhvk3/errors.h"

/// @file
/// The model's device, its opening, and how failures come to the client.

namespace Osv::faults {

using enum simulator::eFunction;
namespace number = lx::error_number;
namespace text = lx::error_text;

namespace {

constexpr std::size_t kLongestText = 1024;

/// The words of the stand-in engine and detector for the codes that they come to use here.
const char* engine_text(long code) {
  switch (code) {
    case -7:
      return "The bitmap does not fit the calibration data";
    case -21:
      return "The buffer is too small";
    case -37:
      return "The option is not available";
    default:
      return nullptr;
  }
}

const char* detector_text(long code) {
  switch (code) {
    case -2:
      return "Invalid handle";
    case -15:
      return "No finger found";
    case -21:
      return "The buffer is too small";
    case -768:
      return "The result is doubtful";
    default:
      return nullptr;
  }
}

/// Bytes of a corrected image: header, palette, rows that are filled up to a multiple of 4 bytes.
unsigned long final_size_of(const std::pair<int, int>& frames) {
  constexpr long kHead = 1064;
  constexpr double kWide = double{simulator::kFinalWidth} / simulator::kRawWidth;
  constexpr double kHigh = double{simulator::kFinalHeight} / simulator::kRawHeight;
  const long width = std::lround(kWide * frames.first);
  const long height = std::lround(kHigh * frames.second);
  return static_cast<unsigned long>(kHead + (width + 3) / 4 * 4 * height);
}

}  // namespace

DriverModel::DriverModel(const Scenario& scenario, double own_score)
    : m_cAnswers(scenario), m_dOwnScore(own_score) {}

// ---- failures

Failure DriverModel::numbered(long number, const std::string& text) {
  return {number, number, text.substr(0, kLongestText)};
}

Failure DriverModel::unnumbered(const std::string& text, long worker_number) {
  return {worker_number, number::NoNumber, text.substr(0, kLongestText)};
}

void DriverModel::throw_device(const std::string& text) { throw numbered(device_error(), text); }

std::string DriverModel::description(eFunction giver, const Effect& effect, const char* own) {
  m_cAnswers.call(giver);
  if (!effect.description.has_value()) {
    return own == nullptr ? "" : own;
  }
  return std::string(effect.description->length.value_or(0), 'x');
}

void DriverModel::throw_engine(const Effect& effect, long code) {
  const char* const own = engine_text(code);
  const std::string words = description(CalibrateGetErrorDescription, effect, own);
  const bool none =
      effect.description.has_value() ? !effect.description->length.has_value() : own == nullptr;
  const std::string behind = " Error domain [ CAL ]. Error code [ " + std::to_string(code) + " ]";
  throw numbered(code, none ? "" : words + behind);
}

void DriverModel::throw_detector(const Effect& effect, long code) {
  const std::string words =
      description(FakeFingerDetectionGetErrorDescriptionA, effect, detector_text(code));
  throw DetectorFailure{unnumbered(words, 1), code};
}

unsigned long DriverModel::stored(long number, const std::string& text) {
  constexpr std::array<const char*, 4> kScannerTexts = {
      "The user canceled the action", "The hardware is incompatible",
      "The firmware is incompatible", "Invalid authorization code"};
  constexpr long kFirst = 0x20000003;
  const auto index = static_cast<std::size_t>(number - kFirst);
  const bool reworded = number >= kFirst && index < kScannerTexts.size();
  m_s.text = reworded ? kScannerTexts[index] : text;
  const long told = number == kFirst + 3 ? long{number::AuthorizationCode} : number;
  return told == 0 ? 0 : static_cast<unsigned long>(told) | number::ReportedBit;
}

unsigned long DriverModel::scanner_result(long result) {
  if (result == 0) {
    return 0;
  }
  const bool gone = result == number::NotConnected;
  return stored(result, gone ? text::NotConnected : text::InitializationFailed);
}

// ---- device

long DriverModel::device_error() {
  constexpr long kNoDevice = 259;
  const long error = m_cAnswers.last_error();
  return error == kNoDevice ? long{number::NotConnected} : error;
}

bool DriverModel::is_family(const Handle& handle) {
  constexpr long kEndOfSignature = 42;
  constexpr long kOwnSize = 1L << 20;
  constexpr long kNotSupported = 8;
  const std::optional<Attached> device = m_cAnswers.device_at(handle.interface);
  if (!m_cAnswers.succeeds(ftrScanGetDeviceInfo, m_cAnswers.error_of(handle)) ||
      !device.has_value() || (device->model != 1 && device->model != 4)) {
    return false;
  }
  if (m_cAnswers.lacks(ftrScanGetExtMemorySize)) {
    return false;  // an older library
  }
  Effect effect;
  if (m_cAnswers.status(ftrScanGetExtMemorySize, m_cAnswers.error_of(handle), effect) == 0) {
    return false;
  }
  const bool no_memory = device->memory == simulator::eMemory::None;
  const long size = effect.number.value_or(no_memory ? 0 : kOwnSize);
  if (size <= 0) {
    return false;
  }
  const long own_error = no_memory ? kNotSupported : m_cAnswers.error_of(handle);
  return m_cAnswers.succeeds(ftrScanRestoreExtMemory, own_error) &&
         device->memory == simulator::eMemory::Calibrated && kEndOfSignature < size;
}

bool DriverModel::is_family(unsigned int interface) {
  const Handle handle = m_cAnswers.open(interface);
  if (!handle.open) {
    return false;
  }
  const bool member = is_family(handle);
  m_cAnswers.close(handle);
  return member;
}

std::vector<DriverModel::Listed> DriverModel::list() {
  std::vector<Listed> found;
  const std::vector<unsigned int> listed = m_cAnswers.listed();
  if (!m_cAnswers.succeeds(ftrScanGetInterfaces)) {
    return found;
  }
  for (const unsigned int interface : listed) {
    const Handle handle = m_cAnswers.open(interface);
    if (!handle.open) {
      continue;
    }
    std::string serial;
    if (is_family(handle) && read_serial(handle, serial)) {
      found.push_back({interface, serial});
    }
    m_cAnswers.close(handle);
  }
  return found;
}

/// The bytes in front of the first zero.
bool DriverModel::read_serial(const Handle& handle, std::string& serial) {
  const std::optional<Attached> device = m_cAnswers.device_at(handle.interface);
  const std::optional<std::string> own = device.has_value() ? device->serial : std::nullopt;
  Effect effect;
  const bool known =
      m_cAnswers.status(ftrScanGetSerialNumber, m_cAnswers.error_of(handle), effect) != 0;
  const std::string told = own.value_or(serial_of(handle.interface));
  serial = effect.no_text ? "" : effect.text.value_or(told);
  return known;
}

bool DriverModel::initialize_device() {
  close_device();
  for (const Listed& scanner : list()) {
    m_s.handle = m_cAnswers.open(scanner.interface);
    if (m_s.handle.open) {
      break;
    }
  }
  return m_s.handle.open;
}

void DriverModel::close_device() {
  if (m_s.handle.open) {
    m_cAnswers.succeeds(ftrScanSetDiodesStatus, m_cAnswers.error_of(m_s.handle));
    m_cAnswers.close(m_s.handle);
    m_s.handle = {};
  }
}

bool DriverModel::select_interface(unsigned int interface) {
  if (m_s.handle.open) {
    m_cAnswers.close(m_s.handle);
    m_s.handle = {};
  }
  const bool done = m_cAnswers.set_base(interface);
  m_s.scan_interface = done ? interface : m_s.scan_interface;
  return done;
}

void DriverModel::restore_leds() {
  if (m_s.green || m_s.red) {
    m_cAnswers.succeeds(ftrScanSetDiodesStatus, m_cAnswers.error_of(m_s.handle));
  }
}

bool DriverModel::fetch_frame() {
  constexpr int kTries = 20;
  constexpr long kBusy = 121;
  bool fetched = false;
  for (int i = 0; i < kTries && !fetched; ++i) {
    fetched = m_cAnswers.succeeds(ftrScanGetImageByVariableDose, m_cAnswers.error_of(m_s.handle));
    if (!fetched && m_cAnswers.last_error() != kBusy) {
      break;
    }
  }
  restore_leds();
  return fetched;
}

bool DriverModel::fetch_lit_frame(eFunction function) {
  const bool fetched = m_cAnswers.succeeds(function, m_cAnswers.error_of(m_s.handle));
  restore_leds();
  return fetched;
}

std::pair<int, int> DriverModel::frames_of(const Handle& handle) const {
  const std::optional<Attached> device = m_cAnswers.device_at(handle.interface);
  return device.has_value() ? device->frames : kTinyFrames;
}

bool DriverModel::read_size(std::pair<int, int>& size) {
  Effect effect;
  const bool known =
      m_cAnswers.status(ftrScanGetImageSize, m_cAnswers.error_of(m_s.handle), effect) != 0;
  size = known ? effect.frame_size.value_or(frames_of(m_s.handle)) : std::pair(0, 0);
  return known;
}

// ---- opening

long DriverModel::open() {
  if (m_s.open) {
    return 0;
  }
  m_s.format = 1;
  if (!m_s.chosen.has_value()) {
    const std::vector<Listed> found = list();
    return found.empty() ? long{number::NotConnected} : choose(found.front().interface);
  }
  if (!initialize_device()) {
    return device_error();
  }
  if (!m_cAnswers.succeeds(ftrScanSetOptions, m_cAnswers.error_of(m_s.handle))) {
    const long error = device_error();
    if (error != static_cast<long>(number::ScannerHardware)) {
      throw numbered(error, "KR9 scanner. Set camara resolution failed.");
    }
  }
  read_calibration();
  m_s.open = true;
  return 0;
}

long DriverModel::choose(unsigned int interface) {
  if (m_s.chosen == interface) {
    return 0;
  }
  close_scanner();
  if (!is_family(interface)) {
    throw numbered(number::DeviceIndex, text::DeviceIndex);
  }
  if (!select_interface(interface)) {
    const long error = device_error();
    throw error == number::NotConnected ? numbered(number::DeviceIndex, text::DeviceIndex)
                                        : numbered(error, "SetActiveScanner failed");
  }
  m_s.chosen = interface;
  return open();
}

void DriverModel::read_calibration() {
  if (m_cAnswers.call(CalibrateCreate).null_handle) {
    throw unnumbered("std::bad_alloc", number::NoNumber);
  }
  try {
    fill_engine();
  } catch (const Failure&) {
    m_cAnswers.call(CalibrateDelete);
    throw;
  }
  if (m_s.engine.has_value()) {
    m_cAnswers.call(CalibrateDelete);
  }
  const std::pair<int, int> frames = frames_of(m_s.handle);
  m_s.engine = Engine{.raw = frames, .final_size = final_size_of(frames)};
}

void DriverModel::fill_engine() {
  constexpr long kNotSupported = 8;
  constexpr long kLargest = 64L << 20;
  constexpr long kOwnSize = 1L << 20;
  const Failure corrupt = numbered(number::CalibrationCorrupt, text::CalibrationIsCorrupt);
  if (!is_family(m_s.handle)) {
    throw corrupt;
  }
  Effect effect;
  if (m_cAnswers.status(ftrScanGetExtMemorySize, m_cAnswers.error_of(m_s.handle), effect) == 0) {
    throw_device("Read the scanner memory size failed.");
  }
  const long size = effect.number.value_or(kOwnSize);
  if (size <= 0 || size > kLargest) {
    throw corrupt;
  }
  if (!m_cAnswers.succeeds(ftrScanRestoreExtMemory, m_cAnswers.error_of(m_s.handle))) {
    // Without a word of its own the system's last error speaks, whatever that is.
    throw device_error() == kNotSupported ? unnumbered(text::HardwareVersion, 1)
                                          : unnumbered("*", 1);
  }
  if (size == 1) {
    throw corrupt;
  }
  if (const long code = m_cAnswers.code(CalibrateSetData, 0, effect); code != 0) {
    throw_engine(effect, code);
  }
}

void DriverModel::close_scanner() {
  if (m_s.open) {
    close_device();
    m_s.open = false;
  }
}

/// @return true for a white frame, false for the one before
bool DriverModel::judge(long error) {
  constexpr long kDeviceGone = 31;
  constexpr long kNoImage = 4306;
  constexpr long kUsable = 0x20000001;
  if (error == number::NotConnected || error == kDeviceGone) {
    close_scanner();
    const std::string text = "KR9 scanner is disconnected from the host, error: 2";
    stored(error, text);
    throw numbered(number::NotConnected, text);
  }
  if (error == kNoImage || error == kUsable) {
    return error == kNoImage;
  }
  const std::string text = "KR9 scanner. Scanner error: " + std::to_string(error);
  stored(error, text);
  throw numbered(error, text);
}

void DriverModel::destroy() {
  if (m_s.detection) {
    stop_detection();
  }
  if (m_s.engine.has_value()) {
    m_cAnswers.call(CalibrateDelete);
  }
  close_device();
  m_s = State();
  m_bDummy = false;
}

}  // namespace Osv::faults
