#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

#include "faults/driver_model.h"
#include "ostrevanhvk3/errors.h"

/// @file
/// The model's images and its fake finger detection.

namespace Osv::faults {

using enum simulator::eFunction;
namespace number = lx::error_number;

namespace {

constexpr unsigned long kHead = 1064;  // of a bitmap: header and palette
constexpr long kSmallBuffer = -21;
constexpr long kWrongSize = -7;
constexpr long kBadHandle = -2;
constexpr char kNoMemory[] = "memory allocation failed";
constexpr char kNoSize[] = "The Calibrate methode return the output bitmap size 0";

}  // namespace

// ---- images

void DriverModel::require_size(const std::pair<int, int>& size) {
  constexpr int kLargest = 10000;
  const auto is_possible = [](int length) { return length > 0 && length <= kLargest; };
  if (!is_possible(size.first) || !is_possible(size.second)) {
    throw unnumbered(kNoMemory, 1);
  }
}

std::pair<int, int> DriverModel::known_size() {
  std::pair<int, int> size;
  if (!read_size(size)) {
    throw_device("Couldn't read the image size of scanner.");
  }
  return size;
}

long DriverModel::shape() {
  if (const long result = open(); result != 0) {
    return result;
  }
  const std::pair<int, int> size = known_size();
  require_size(size);
  if (!fetch_frame()) {
    throw_device("Capture raw image failed.");
  }
  require_engine();
  Effect effect;
  const bool fits = fits_engine(size);
  unsigned long needed = fits ? m_s.engine->final_size : 0;
  const long own_code = fits ? kSmallBuffer : kWrongSize;
  const long code = m_cAnswers.code(Calibrate, own_code, effect);
  needed = effect.fails_with.has_value() ? 0 : needed;
  needed = static_cast<unsigned long>(effect.number.value_or(static_cast<long>(needed)));
  if (code != 0 && code != kSmallBuffer) {
    throw_engine(effect, code);
  }
  if (needed == 0) {
    throw numbered(-1, kNoSize);
  }
  if (needed > (1UL << 40U)) {
    throw unnumbered(kNoMemory, 1);
  }
  m_s.calibrated_size = needed;
  calibrate(m_s.calibrated_size, fits);
  m_s.content = 0;
  return 0;
}

void DriverModel::require_engine() const {
  if (!m_s.engine.has_value()) {
    throw numbered(number::NotConnected, lx::error_text::NotConnected);
  }
}

bool DriverModel::fits_engine(const std::pair<int, int>& size) const {
  return size == m_s.engine->raw;
}

/// @param size in and out as the engine has it
void DriverModel::calibrate(unsigned long& size, bool is_raw_frame) {
  const unsigned long room = size;
  const long own_code = !is_raw_frame                   ? kWrongSize
                        : room < m_s.engine->final_size ? kSmallBuffer
                                                        : 0;
  Effect effect;
  const long code = m_cAnswers.code(Calibrate, own_code, effect);
  if (!effect.fails_with.has_value() && is_raw_frame) {
    size = m_s.engine->final_size;
  }
  size = static_cast<unsigned long>(effect.number.value_or(static_cast<long>(size)));
  size = std::min(size, room);
  if (code != 0) {
    throw_engine(effect, code);
  }
  if (own_code != 0) {
    throw numbered(-1, kNoSize);
  }
}

/// A bitmap that isn't shaped yet is tried a second time, and then a failed opening is told.
void DriverModel::shape_for_frames() {
  if (shape() == 0) {
    return;
  }
  if (const long result = shape(); result != 0) {
    judge(result);
    throw numbered(result, "Failed to initialize KR9-scanner.");
  }
}

void DriverModel::frame() {
  if (m_s.detection) {
    scored_frame();
  } else {
    plain_frame();
  }
}

void DriverModel::plain_frame() {
  if (fetch_frame()) {
    require_engine();
    calibrate(m_s.calibrated_size, true);
    m_s.content = ++m_nFrames;
  } else if (judge(device_error())) {
    m_s.content = 0;
  }
}

void DriverModel::scored_frame() {
  constexpr long kNoFinger = -15;
  try {
    capture_and_score();
  } catch (const DetectorFailure& failure) {
    if (failure.code != kNoFinger) {
      throw;
    }
    reset_detection();
  }
}

void DriverModel::reset_detection() {
  m_s.content = 0;
  detect(FakeFingerDetectionReset);
  m_s.score = 0;
}

void DriverModel::set_option() {
  Effect effect;
  if (const long code = m_cAnswers.code(CalibrateSetOption, 0, effect); code != 0) {
    throw_engine(effect, code);
  }
}

void DriverModel::capture_and_score() {
  const std::pair<int, int> size = known_size();
  require_engine();
  set_option();
  const auto back_on = [this] {
    try {
      set_option();
    } catch (const Failure&) {
    }
  };
  try {
    fetch_and_score(size);
  } catch (const Failure&) {
    back_on();
    throw;
  }
  back_on();
}

void DriverModel::fetch_and_score(const std::pair<int, int>& size) {
  require_size(size);
  const bool complete = fetch_lit_frame(ftrScanGetDarkImage) &&
                        fetch_lit_frame(ftrScanGetBacklightImage) && fetch_frame();
  if (!complete && judge(device_error())) {
    reset_detection();
    return;
  }
  const auto [width, height] = m_s.engine->raw;
  unsigned long room =
      kHead + static_cast<unsigned long>(width) * static_cast<unsigned long>(height);
  for (int image = 0; image < 3; ++image) {
    calibrate(room, fits_engine(size));
    detect(FakeFingerDetectionSetImage);
  }
  evaluate(complete);
  set_option();
  calibrate(room, fits_engine(size));
  m_s.content = complete ? ++m_nFrames : 0;
  detect(FakeFingerDetectionReset);
  if (!(m_s.score > threshold())) {
    ++m_s.events;
  }
}

void DriverModel::evaluate(bool complete) {
  constexpr long kNoFinger = -15;
  m_s.score_state = 0;
  const long own_code = !m_s.detector_alive ? kBadHandle : complete ? 0 : kNoFinger;
  Effect effect;
  const long code = m_cAnswers.code(FakeFingerDetectionEvaluateLiveliness, own_code, effect);
  const bool is_state = code >= -799 && code <= -768;
  if (code != 0 && !is_state) {
    throw_detector(effect, code);
  }
  const double own = effect.fails_with.has_value() ? 0 : m_dOwnScore;
  m_s.score = effect.number.has_value() ? static_cast<double>(*effect.number) : own;
  m_s.score = effect.not_a_number ? std::nan("") : m_s.score;
  m_s.score_state = is_state ? code : 0;
}

void DriverModel::detect(eFunction function) {
  Effect effect;
  const long code = m_cAnswers.code(function, m_s.detector_alive ? 0 : kBadHandle, effect);
  if (code != 0) {
    throw_detector(effect, code);
  }
}

bool DriverModel::is_sensitive() {
  constexpr std::size_t kRoom = 10;
  constexpr long kNoOption = -37;
  const std::string own = m_s.engine->sensitive ? "Enabled" : "Disabled";
  Effect effect = m_cAnswers.call(CalibrateGetOption);
  const std::string value = effect.no_text ? "" : effect.text.value_or(own);
  const long own_code = value.size() < kRoom ? 0 : kSmallBuffer;
  const long code = effect.fails_with.value_or(effect.answer.value_or(own_code));
  if (code == kNoOption) {
    return false;
  }
  if (code != 0) {
    throw_engine(effect, code);
  }
  return value == "Enabled";
}

// ---- fake finger detection

void DriverModel::switch_detection(unsigned int value) {
  if (value == 0) {
    if (m_s.detection) {
      stop_detection();
    }
    return;
  }
  if (!m_s.detection) {
    start_detection();
  }
  detect(FakeFingerDetectionSetPropertyA);
  m_s.level = value == 2 ? 2 : 1;
}

void DriverModel::start_detection() {
  Effect effect;
  if (const long code = m_cAnswers.code(FakeFingerDetectionInitialize, 0, effect); code != 0) {
    throw_detector(effect, code);
  }
  if (const long code = m_cAnswers.code(FakeFingerDetectionCreateHandle, 0, effect); code != 0) {
    try {
      throw_detector(effect, code);
    } catch (const Failure&) {
      m_cAnswers.call(FakeFingerDetectionUninitialize);
      throw;
    }
  }
  m_s.detection = true;
  m_s.detector_alive = !effect.null_handle;
  m_s.level = 1;
}

void DriverModel::stop_detection() {
  const Effect effect = m_cAnswers.call(FakeFingerDetectionDestroyHandle);
  if (m_s.detector_alive && effect.fails_with.has_value()) {
    ++m_nLostDetectors;
  }
  m_cAnswers.call(FakeFingerDetectionUninitialize);
  m_s.detection = false;
  m_s.detector_alive = false;
}

double DriverModel::threshold() {
  constexpr unsigned int kScores = 101;
  if (m_s.fake_score != 0) {
    return m_s.fake_score;
  }
  std::array<std::array<double, kScores>, 2> rates = {};
  double sign = 1;
  for (auto& curve : rates) {
    for (unsigned int score = 0; score < kScores; ++score) {
      detect(FakeFingerDetectionSetPropertyA);
      curve[score] = rate_at(score, sign);
    }
    sign = -1;
  }
  for (unsigned int score = 0; score < kScores - 1 && m_s.fake_score == 0; ++score) {
    if (rates[1][score] - rates[0][score] < 0) {
      m_s.fake_score = score - 1U;
      break;
    }
  }
  return m_s.fake_score;
}

double DriverModel::rate_at(unsigned int score, double sign) {
  constexpr double kWidth = 6;
  const double crossing = m_s.level == 1 ? 48.5 : 62.5;
  const double rate = 1 / (1 + std::exp(-sign * (score - crossing) / kWidth));
  const std::string text = read_property(std::to_string(rate));
  m_cAnswers.allocate();  // the last number, too, is made before the threshold is known
  return std::strtod(text.c_str(), nullptr);
}

std::string DriverModel::read_property(const std::string& own) {
  constexpr std::size_t kLongest = 1U << 24;
  Effect effect = m_cAnswers.call(FakeFingerDetectionGetPropertyA);
  const long own_code = !m_s.detector_alive ? kBadHandle : effect.no_text ? 0 : kSmallBuffer;
  const long code = effect.fails_with.value_or(effect.answer.value_or(own_code));
  if (code != kSmallBuffer) {
    if (code != 0) {
      throw_detector(effect, code);
    }
    return "";
  }
  const auto own_length = static_cast<long>(effect.text.value_or(own).size()) + 1;
  const auto length = static_cast<std::size_t>(
      effect.number.value_or(effect.fails_with.has_value() ? 0 : own_length));
  if (length > kLongest) {
    throw unnumbered(kNoMemory, 1);
  }
  return length == 0 ? "" : read_property_into(own, length);
}

std::string DriverModel::read_property_into(const std::string& own, std::size_t room) {
  const Effect effect = m_cAnswers.call(FakeFingerDetectionGetPropertyA);
  // Where nothing is written, the zeros stay of which the plug-in's text is made.
  const std::string value = effect.no_text ? std::string(room, '0') : effect.text.value_or(own);
  const long own_code = effect.no_text || value.size() < room ? 0 : kSmallBuffer;
  const long code = effect.fails_with.value_or(effect.answer.value_or(own_code));
  if (code != 0) {
    throw_detector(effect, code);
  }
  return own_code == 0 ? value : "";
}

}  // namespace Osv::faults
