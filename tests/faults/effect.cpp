#include "faults/effect.h"

#include <array>
#include <limits>
#include <string_view>

namespace Osv::faults {
namespace {

/// The numbers that the driver treats by value, an ordinary one, and none at all.
constexpr std::array<long, 14> kScannerNumbers = {
    0,    2,          8,          31,         121,        259,        1460,
    4306, 0x20000001, 0x20000002, 0x20000003, 0x20000004, 0x20000005, 0x20000006};
constexpr std::array<long, 3> kEngineCodes = {-1, -21, -37};
constexpr std::array<long, 6> kDetectorCodes = {-15, -21, -767, -768, -799, -800};
constexpr std::array<unsigned int, 4> kLengths = {0, 1023, 1024, 5000};
constexpr long kAbsurd = 1L << 62;
constexpr long kLowest = std::numeric_limits<long>::min();

std::vector<Effect> failures(const auto& numbers) {
  std::vector<Effect> effects;
  for (const long number : numbers) {
    effects.push_back({.fails_with = number});
  }
  return effects;
}

/// Codes of an engine or detector, each that is an error with each text that it may have.
/// @param is_error tells whether the library is asked for a text
std::vector<Effect> coded_failures(const auto& codes, bool (*is_error)(long code)) {
  std::vector<Effect> effects = failures(codes);
  for (const long code : codes) {
    if (!is_error(code)) {
      continue;
    }
    effects.push_back({.fails_with = code, .description = Description()});
    for (const unsigned int length : kLengths) {
      effects.push_back({.fails_with = code, .description = Description{length}});
    }
  }
  return effects;
}

bool is_always(long /*code*/) { return true; }

std::vector<Effect> engine_failures() { return coded_failures(kEngineCodes, &is_always); }

std::vector<Effect> detector_failures() { return coded_failures(kDetectorCodes, &is_always); }

bool is_missing_option(long code) { return code == -37; }

/// Of an evaluation, whose other codes are states.
bool is_failed_evaluation(long code) { return code < -799 || code > -768; }

std::vector<Effect> with(std::vector<Effect> effects, const std::vector<Effect>& more) {
  effects.insert(effects.end(), more.begin(), more.end());
  return effects;
}

std::vector<Effect> frame_sizes() {
  constexpr int kHuge = 2147483647;
  std::vector<Effect> effects;
  for (const auto& size : {std::pair(-1, 480), std::pair(640, -1), std::pair(0, 480),
                           std::pair(640, 0), std::pair(kHuge, kHuge), std::pair(1280, 960)}) {
    effects.push_back({.frame_size = size});
  }
  return effects;
}

std::vector<Effect> engine_sizes() {
  std::vector<Effect> effects;
  for (const long code : {0L, -21L}) {
    for (const long size : {0L, 1L, kAbsurd, -1L, kLowest}) {
      effects.push_back({.answer = code, .number = size});
    }
  }
  return effects;
}

std::vector<Effect> property_answers() {
  std::vector<Effect> effects = {{.answer = 0}};
  effects.push_back({.no_text = true});
  for (const long length : {0L, 1L, 1023L, 1024L, 5000L, kAbsurd, -1L, kLowest}) {
    effects.push_back({.answer = -21, .number = length});
  }
  for (const unsigned int length : kLengths) {
    effects.push_back({.text = std::string(length, 'x')});
  }
  return effects;
}

/// A serial number has 8 bytes, and its end is not marked.
std::vector<Effect> serial_numbers() {
  return {{.no_text = true}, {.text = ""}, {.text = "x"}, {.text = "xxxxxxxx"}};
}

/// The longest parts that are there, and the shortest version.
std::vector<Effect> versions() {
  constexpr long kLargest = 65534;
  constexpr long kAbsent = 65535;
  return {{.no_text = true}, {.number = kLargest}, {.number = kAbsent}};
}

std::vector<Effect> option_values() {
  return {{.text = ""},
          {.text = "Enabled"},
          {.text = "EnabledX"},
          {.text = "enabled"},
          {.text = std::string(1023, 'x')},
          {.text = std::string(1024, 'x')},
          {.text = std::string(5000, 'x')},
          {.no_text = true},
          {.answer = 0, .number = 5000},
          {.answer = 0, .number = -1},
          {.answer = -21, .number = 0}};
}

/// All kinds, by the function's number.
std::vector<std::vector<Effect>> all_kinds() {
  std::vector<std::vector<Effect>> all(simulator::kFunctionCount);
  const auto of = [&](eFunction function) -> std::vector<Effect>& {
    return all[simulator::index_of(function)];
  };
  using enum eFunction;
  for (const eFunction function :
       {ftrScanSetOptions, ftrScanGetDeviceInfo, ftrScanGetImageSize, ftrScanGetBacklightImage,
        ftrScanGetDarkImage, ftrScanSetDiodesStatus, ftrScanGetInterfaces, ftrSetBaseInterface,
        ftrScanGetImageByVariableDose, ftrScanGetExtMemorySize, ftrScanRestoreExtMemory,
        ftrScanGetSerialNumber, ftrScanGetVersion, ftrScanSetNewAuthorizationCode,
        ftrScanSaveSecret7Bytes, ftrScanRestoreSecret7Bytes, ftrScanOpenDeviceOnInterface,
        ftrScanCloseDevice}) {
    of(function) = failures(kScannerNumbers);  // a closing, too, can leave its number behind
  }
  of(ftrScanGetSerialNumber) = with(of(ftrScanGetSerialNumber), serial_numbers());
  of(ftrScanGetVersion) = with(of(ftrScanGetVersion), versions());
  of(ftrScanOpenDeviceOnInterface).push_back({.null_handle = true});
  of(ftrScanGetImageSize) = with(of(ftrScanGetImageSize), frame_sizes());
  for (const long size : {0L, 1L, -1L, -2147483648L, 2147483647L}) {
    of(ftrScanGetExtMemorySize).push_back({.number = size});
  }
  for (const eFunction function :
       {ftrScanSetNewAuthorizationCode, ftrScanSaveSecret7Bytes, ftrScanRestoreSecret7Bytes}) {
    of(function) = with(of(function), {{.answer = 2}, {.answer = -1}});
  }
  for (const long number : kScannerNumbers) {
    of(ftrScanGetLastError).push_back({.answer = number});
  }
  of(CalibrateCreate) = {{.null_handle = true}};
  for (const eFunction function :
       {Calibrate, CalibrateSetData, ContaminationDetection, CalibrateSetOption}) {
    of(function) = engine_failures();
  }
  of(Calibrate) = with(of(Calibrate), engine_sizes());
  of(CalibrateGetOption) =
      with(coded_failures(kEngineCodes, [](long code) { return !is_missing_option(code); }),
           option_values());
  for (const eFunction function :
       {FakeFingerDetectionInitialize, FakeFingerDetectionCreateHandle, FakeFingerDetectionReset,
        FakeFingerDetectionEvaluateLiveliness, FakeFingerDetectionSetImage,
        FakeFingerDetectionSetPropertyA, FakeFingerDetectionGetPropertyA}) {
    of(function) = detector_failures();
  }
  of(FakeFingerDetectionCreateHandle).push_back({.null_handle = true});
  of(FakeFingerDetectionEvaluateLiveliness) = coded_failures(kDetectorCodes, &is_failed_evaluation);
  // Nobody looks at how these went.
  of(FakeFingerDetectionDestroyHandle) = failures(kDetectorCodes);
  of(FakeFingerDetectionUninitialize) = failures(kDetectorCodes);
  for (const eFunction function : {ContaminationDetection, FakeFingerDetectionEvaluateLiveliness}) {
    of(function) = with(of(function),
                        {{.number = 0}, {.number = -1}, {.number = 1000}, {.not_a_number = true}});
  }
  of(FakeFingerDetectionGetPropertyA) =
      with(of(FakeFingerDetectionGetPropertyA), property_answers());
  return all;
}

bool is_of_engine(eFunction function) {
  const std::string_view name = simulator::name_of(function);
  return name.starts_with("Calibrate") || name.starts_with("Contamination");
}

/// The part of a plan that is about the descriptions of this function's errors.
std::string description_in_words(eFunction function, const Description& description) {
  const eFunction giver = is_of_engine(function)
                              ? eFunction::CalibrateGetErrorDescription
                              : eFunction::FakeFingerDetectionGetErrorDescriptionA;
  const std::string words =
      description.length.has_value()
          ? " gives text of " + std::to_string(*description.length) + " characters"
          : " gives no text";
  return std::string("; ") + simulator::name_of(giver) + words;
}

}  // namespace

std::string Effect::in_words(eFunction function) const {
  if (fails_with.has_value()) {
    return "fails with " + std::to_string(*fails_with);
  }
  if (answer.has_value() && number.has_value()) {
    const bool size = function == eFunction::Calibrate;
    return "answers " + std::to_string(*answer) + (size ? " with size " : " with length ") +
           std::to_string(*number);
  }
  if (answer.has_value()) {
    return "answers " + std::to_string(*answer);
  }
  if (number.has_value()) {
    return "gives " + std::to_string(*number);
  }
  if (not_a_number) {
    return "gives nan";
  }
  if (frame_size.has_value()) {
    return "gives " + std::to_string(frame_size->first) + " x " +
           std::to_string(frame_size->second);
  }
  if (no_text) {
    return "gives no text";
  }
  return null_handle ? "gives a null handle" : "answers text '" + text.value_or("") + "'";
}

std::string Fault::in_words() const {
  const std::string number = std::to_string(first);
  std::string words = std::string(simulator::name_of(function)) +
                      (lasting ? " from call " + number + " on " : " call " + number + " ") +
                      effect.in_words(function);
  if (effect.description.has_value()) {
    words += description_in_words(function, *effect.description);
  }
  return words;
}

std::string Incident::in_words() const {
  if (callback.has_value()) {
    return "inside callback " + std::to_string(*callback) + "\n" + unplugging_in_words(comes_back);
  }
  const std::string wait = "wait " + std::to_string(call) + (call == 1 ? " call" : " calls") +
                           " of " + simulator::name_of(function) + "\n";
  return (call == 0 ? "" : wait) + unplugging_in_words(comes_back);
}

std::string in_words(const Faults& faults) {
  std::string words;
  for (const Fault& fault : faults) {
    words += (words.empty() ? "" : "; ") + fault.in_words();
  }
  return words;
}

const std::vector<Effect>& kinds_of(eFunction function) {
  static const std::vector<std::vector<Effect>> all = all_kinds();
  return all[simulator::index_of(function)];
}

}  // namespace Osv::faults
