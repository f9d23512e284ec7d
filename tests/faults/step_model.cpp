#include <array>
#include <cstdio>

#include "faults/driver_model.h"
#include "ostrevanhvk3/enumerations.h"
#include "ostrevanhvk3/errors.h"
#include "ostrevanhvk3/feature.h"

/// @file
/// The model's client operations and its capture.

namespace Osv::faults {

using enum simulator::eFunction;
namespace number = lx::error_number;
namespace text = lx::error_text;

namespace {

bool is_format_read(const Step& step) {
  return step.what == eStep::GetFeature && step.number == eFeatureImageDataFormat;
}

std::string version_in_words(const Effect& effect, const char* own) {
  constexpr long kAbsent = 65535;
  if (!effect.no_text && !effect.number.has_value()) {
    return own;
  }
  const std::string part = std::to_string(effect.number.value_or(0));
  const std::string first = part + '.' + part;
  return effect.number == kAbsent ? first : first + '.' + first;
}

}  // namespace

unsigned long DriverModel::translated(const std::function<unsigned long()>& operation) {
  try {
    const unsigned long result = operation();
    m_cAnswers.allocate(eThread::Client);
    return result;
  } catch (const Failure& failure) {
    return stored(failure.client_number, failure.text);
  }
}

/// It refuses whatever is asked of it, writes nothing, and has a text in a form of its own.
std::string DriverModel::run_on_dummy(const Step& step) {
  using enum eStep;
  const std::string value = step.what == Active      ? "0"
                            : step.what == Snap      ? "none"
                            : step.what == FrameInfo ? score_in_words(0, 0)
                                                     : "";
  return in_words(step, number::NoNumber | number::ReportedBit, value, "*");
}

std::string DriverModel::run(const Step& step) {
  using enum eStep;
  const bool is_ours = step.what == Unplug || step.what == PlugInAgain || step.what == GetAgain ||
                       step.what == LoadAgain;
  if (m_bDummy && !is_ours) {
    return run_on_dummy(step);
  }
  std::string value;
  unsigned long result = 0;
  switch (step.what) {
    case List:
      result = translated([&] { return run_list(value); });
      break;
    case Choose:
      result = translated([&] { return scanner_result(choose(step.number)); });
      break;
    case Active:
      value = std::to_string(m_s.scan_interface);
      break;
    case Info:
      result = translated([&] { return run_info(value); });
      break;
    case Camera:
      result = translated([&] {
        open();
        return 0UL;
      });
      break;
    case Snap:
      result = translated([&] { return run_snap(value); });
      break;
    case SetProperty:
    case GetProperty:
      value = step.what == GetProperty ? std::to_string(kUnread) : "";
      result = translated([&] { return run_property(step, value); });
      break;
    case SetFeature:
    case GetFeature:
      value = is_format_read(step) ? std::to_string(kUnread) : "";
      result = translated([&] { return run_feature(step, value); });
      break;
    case Contamination:
      value = "0";
      result = translated([&] { return contamination(value); });
      break;
    case FrameInfo:
      value = score_in_words(m_s.score, m_s.score_state);
      break;
    case Unplug:
      m_cAnswers.unplug(step.number);
      break;
    case PlugInAgain:
      m_cAnswers.plug_in_again(step.number);
      break;
    case StopAgain:
      break;
    case GetAgain:
    case LoadAgain:
      destroy();
      break;
    default:
      result = run_capture(step, value);
      break;
  }
  // A failure without a number is no failure for the client: it has what was there before.
  const bool gives = result == 0 || step.what == Info || step.what == Snap || is_capture(step);
  return in_words(step, result, gives ? value : "", m_bDummy ? "*" : m_s.text);
}

unsigned long DriverModel::run_list(std::string& value) {
  for (const Listed& scanner : list()) {
    value += listed_in_words(scanner.interface, scanner.serial);
  }
  return 0;
}

unsigned long DriverModel::run_info(std::string& value) {
  if (m_s.info.empty()) {
    if (const long result = open(); result != 0) {
      return stored(result, text::MoreData);
    }
    read_info();
  }
  for (const std::string& line : m_s.info) {
    value += line + '|';
  }
  return 0;
}

/// Where reading ends early, what was read stays.
void DriverModel::read_info() {
  m_cAnswers.allocate(eThread::Client);
  m_s.info.emplace_back("Ostrevan KR9 scanner");
  std::string serial;
  if (!read_serial(m_s.handle, serial)) {
    throw_device("Could not read the serial number of the scanner.");
  }
  m_cAnswers.allocate(eThread::Client);
  if (!serial.empty()) {
    m_s.info.push_back(serial);
  }
  Effect effect;
  if (m_cAnswers.status(ftrScanGetVersion, m_cAnswers.error_of(m_s.handle), effect) == 0) {
    m_s.info.push_back(m_s.engine.has_value() ? "simulated unit 1" : "1");
    return;
  }
  try {
    m_cAnswers.allocate(eThread::Client);
  } catch (const Failure&) {
    m_s.info.back() += '*';  // with or without the first version
    throw;
  }
  m_s.info.push_back(version_in_words(effect, "2.1"));
  m_s.info.push_back(version_in_words(effect, "3.4.5"));
}

unsigned long DriverModel::run_snap(std::string& value) {
  value = "none";
  if (const long result = open(); result != 0) {
    return stored(result, text::GetImageFailed);
  }
  m_s.content = 0;
  shape_for_frames();
  frame();
  value = m_s.content == 0 ? "white" : "image";
  take_events({}, value);
  return 0;
}

unsigned long DriverModel::contamination(std::string& value) {
  constexpr char kFailed[] = "Capture image failed.";
  if (const long result = open(); result != 0) {
    return scanner_result(result);
  }
  std::pair<int, int> size;
  if (!read_size(size)) {
    throw_device(kFailed);
  }
  require_size(size);
  if (!fetch_frame()) {
    throw_device(kFailed);
  }
  require_engine();
  Effect effect;
  constexpr long kWrongSize = -7;
  const long own_code = fits_engine(size) ? 0 : kWrongSize;
  const long code = m_cAnswers.code(ContaminationDetection, own_code, effect);
  if (code != 0) {
    throw_engine(effect, code);
  }
  value = effect.not_a_number         ? "nan"
          : effect.number.has_value() ? std::to_string(*effect.number)
                                      : "some";
  return 0;
}

// ---- properties and features

unsigned long DriverModel::run_property(const Step& step, std::string& value) {
  if (const long result = open(); result != 0) {
    return scanner_result(result);
  }
  if (step.what == eStep::SetProperty) {
    set_property(step);
  } else {
    value = std::to_string(get_property(step));
  }
  return 0;
}

void DriverModel::set_property(const Step& step) {
  switch (step.number) {
    case ePropChannelCount:
      throw numbered(number::PropertyReadOnly, text::PropertyReadOnly);
    case ePropLiveliness:
      switch_detection(step.value);
      break;
    case ePropRedLED:
    case ePropGreenLED:
      (step.number == ePropRedLED ? m_s.red : m_s.green) = step.value != 0;
      if (!m_cAnswers.succeeds(ftrScanSetDiodesStatus, m_cAnswers.error_of(m_s.handle))) {
        throw_device("Switch the LED failed");
      }
      break;
    case ePropFakeDetection:
      m_s.fake_score = step.value;
      break;
    default:
      if (m_s.engine.has_value()) {
        set_option();
        m_s.engine->sensitive = step.value != 0;
      }
  }
}

unsigned int DriverModel::get_property(const Step& step) {
  constexpr unsigned int kOn = 100;
  switch (step.number) {
    case ePropChannelCount:
      return 1;
    case ePropLiveliness:
      return m_s.detection ? kOn : 0;
    case ePropRedLED:
      return m_s.red ? kOn : 0;
    case ePropGreenLED:
      return m_s.green ? kOn : 0;
    case ePropFakeDetection:
      return m_s.detection ? static_cast<unsigned int>(threshold()) : 0;
    case ePropLowContrastImage:
      return !m_s.engine.has_value() ? kUnread : is_sensitive() ? kOn : 0;
    default:
      throw numbered(number::IncorrectProperty, text::IncorrectProperty);
  }
}

unsigned long DriverModel::run_feature(const Step& step, std::string& value) {
  const bool set = step.what == eStep::SetFeature;
  if (const long result = open(); result != 0) {
    return static_cast<unsigned long>(result);
  }
  if (step.number == eFeatureImageDataFormat) {
    if (set) {
      m_s.format = 2;
    } else {
      value = std::to_string(m_s.format);
    }
    return 0;
  }
  if (step.number == eFeatureAuthorizationCode) {
    if (!set) {
      return number::WriteOnly;
    }
    send_bytes(ftrScanSetNewAuthorizationCode, "SetNewAuthorizationCode");
  } else if (set) {
    send_bytes(ftrScanSaveSecret7Bytes, "SaveSecret7Bytes");
  } else {
    send_bytes(ftrScanRestoreSecret7Bytes, "RestoreSecret7Bytes");
  }
  return 0;
}

/// The device knows the code of the scanner's bytes only if the step that sets it came through.
void DriverModel::send_bytes(eFunction function, const char* text) {
  constexpr long kWrongCode = 0x20000006;
  const bool knows = function == ftrScanSetNewAuthorizationCode || m_bCodeIsSet;
  const long gone = m_cAnswers.error_of(m_s.handle);
  Effect effect;
  const int status = m_cAnswers.status(function, gone != 0 ? gone : knows ? 0 : kWrongCode, effect);
  if (function == ftrScanSetNewAuthorizationCode && gone == 0 && !effect.fails_with.has_value()) {
    m_bCodeIsSet = true;
  }
  if (status != 1) {
    throw_device(text);
  }
}

// ---- capture

unsigned long DriverModel::run_capture(const Step& step, std::string& value) {
  bool starts = false;
  const unsigned long result = translated([&] {
    const long opened = open();
    if (opened != 0) {
      return stored(opened, text::StartFailed);
    }
    m_cAnswers.allocate(eThread::Client);
    starts = !m_cAnswers.lacks_worker();
    return 0UL;
  });
  if (!starts) {
    // A failure without a number is no failure for the client.
    value = result == 0 ? "nothing " : "";
  } else {
    value = "start ";
    m_bUnplugged = false;
    act_inside(step, kStartCallback);
    try {
      worker(step, value);
    } catch (const Failure& failure) {
      value += "error(" + failure.text + " error: " + std::to_string(failure.worker_number) + ") ";
      act_inside(step, kErrorCallback);
    }
    act_inside(step, kStopCallback);
    value += "stop ";
  }
  return result;
}

void DriverModel::worker(const Step& step, std::string& value) {
  if (open() != 0) {
    throw_device("Failed to initialize KR9-scanner.");
  }
  m_s.content = 0;
  shape_for_frames();
  for (unsigned int image = 1; image <= step.number; ++image) {
    const unsigned int before = m_s.content;
    frame();
    take_events(step, value);
    value += m_s.content == 0 ? "white " : m_s.content == before ? "same " : "live ";
    act_inside(step, image);
    if (step.what == eStep::LiveFrozen && image == 1) {
      value += "frozen ";
    }
    if (step.what == eStep::LiveTwice && image == step.number) {
      value += "refused(" + std::to_string(stored(number::AlreadyCapturing, "")) + ") ";
    }
    if (step.what == eStep::Plain && !is_sensitive() && m_s.content != 0) {
      m_cAnswers.allocate(eThread::Worker);
      value += "finger ";
      act_inside(step, kFingerCallback);
      return;
    }
  }
}

void DriverModel::act_inside(const Step& step, unsigned int callback) {
  m_vCallbacks.push_back(callback);
  if (step.unplugs.has_value() && step.unplugs->callback == callback && !m_bUnplugged) {
    m_bUnplugged = true;
    m_cAnswers.unplug(step.unplugs->comes_back);
  }
}

void DriverModel::take_events(const Step& step, std::string& value) {
  for (; m_s.events != 0; --m_s.events) {
    value += " fake ";
    act_inside(step, kEventCallback);
  }
}

}  // namespace Osv::faults
