#include "bench/fault.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <string_view>

#include "bench/words.h"
#include "ostrevanhvk3_simulator/bench.h"

namespace Osv::simulator {
namespace {

using Functions = std::initializer_list<eFunction>;

// Who can give or do what.
constexpr Functions kHandleGivers = {eFunction::ftrScanOpenDeviceOnInterface,
                                     eFunction::CalibrateCreate,
                                     eFunction::FakeFingerDetectionCreateHandle};
constexpr Functions kDescriptionGivers = {eFunction::CalibrateGetErrorDescription,
                                          eFunction::FakeFingerDetectionGetErrorDescriptionA};
constexpr Functions kLengthGivers = {eFunction::CalibrateGetOption,
                                     eFunction::FakeFingerDetectionGetPropertyA};
constexpr Functions kTextGivers = {eFunction::CalibrateGetOption,
                                   eFunction::FakeFingerDetectionGetPropertyA,
                                   eFunction::ftrScanGetSerialNumber};
constexpr Functions kReticent = {
    eFunction::CalibrateGetErrorDescription, eFunction::FakeFingerDetectionGetErrorDescriptionA,
    eFunction::CalibrateGetOption,           eFunction::FakeFingerDetectionGetPropertyA,
    eFunction::ftrScanGetSerialNumber,       eFunction::ftrScanGetVersion};
constexpr Functions kPartGivers = {eFunction::ftrScanGetVersion};
constexpr Functions kFrameSizeGivers = {eFunction::ftrScanGetImageSize};
constexpr Functions kMemorySizeGivers = {eFunction::ftrScanGetExtMemorySize};
constexpr Functions kScoreGivers = {eFunction::ContaminationDetection,
                                    eFunction::FakeFingerDetectionEvaluateLiveliness};
constexpr Functions kSizeGivers = {eFunction::Calibrate};
constexpr Functions kWithSubject = {eFunction::CalibrateSetOption, eFunction::CalibrateGetOption,
                                    eFunction::FakeFingerDetectionSetPropertyA,
                                    eFunction::FakeFingerDetectionGetPropertyA};

// And who can not. Blocking goes with every function.
constexpr Functions kNeverFailing = {eFunction::ftrScanGetLastError,
                                     eFunction::ftrScanSetLastError,
                                     eFunction::ftrGetBaseInterfaceNumber,
                                     eFunction::CalibrateDelete,
                                     eFunction::CalibrateGetErrorDescription,
                                     eFunction::FakeFingerDetectionGetErrorDescriptionA,
                                     eFunction::OsvLFLog,
                                     eFunction::OsvLFFlush};
constexpr Functions kWithoutNumber = {eFunction::ftrScanOpenDeviceOnInterface,
                                      eFunction::ftrScanCloseDevice,
                                      eFunction::ftrScanSetLastError,
                                      eFunction::CalibrateCreate,
                                      eFunction::CalibrateDelete,
                                      eFunction::CalibrateGetErrorDescription,
                                      eFunction::FakeFingerDetectionGetErrorDescriptionA,
                                      eFunction::OsvLFLog,
                                      eFunction::OsvLFFlush};
constexpr Functions kWithoutLastError = {eFunction::ftrScanGetLastError,
                                         eFunction::ftrGetBaseInterfaceNumber};

/// One fault in the making.
class FaultReader {
 public:
  explicit FaultReader(std::string_view text) : m_cWords(text, "fault") {}

  Fault read() {
    read_function();
    read_calls();
    read_effect();
    if (!m_cWords.ended()) {
      m_cWords.refuse_here();
    }
    return m_sFault;
  }

 private:
  void read_function() {
    const auto function = function_named(m_cWords.word());
    if (!function.has_value()) {
      m_cWords.refuse_here();
    }
    m_sFault.function = *function;
    m_cWords.advance();
    if (word_for(kWithSubject, "of")) {
      m_sFault.subject = m_cWords.quoted();
    }
  }

  void read_calls() {
    if (m_cWords.accept("call") || m_cWords.accept("calls")) {
      m_sFault.first = call_number();
      m_sFault.last = m_cWords.accept("to") ? call_number() : m_sFault.first;
    } else if (m_cWords.accept("from")) {
      m_cWords.expect("call");
      m_sFault.first = call_number();
      m_cWords.expect("on");
    } else {
      m_cWords.accept("always");
    }
  }

  unsigned int call_number() {
    constexpr long kLast = std::numeric_limits<int>::max();
    return static_cast<unsigned int>(m_cWords.whole_number_between(1, kLast));
  }

  void read_effect() {
    if (word_but_for(kNeverFailing, "fails")) {
      m_cWords.expect("with");
      m_sFault.effects.fails_with = code();
    } else if (m_cWords.accept("blocks")) {
      m_cWords.expect("until");
      m_cWords.expect("told");
      m_sFault.effects.blocks = true;
    } else if (word_but_for(kWithoutNumber, "answers")) {
      read_answer();
    } else {
      m_cWords.expect("gives");
      read_gift();
    }
  }

  void read_answer() {
    if (word_for(kTextGivers, "text")) {
      m_sFault.effects.text = m_cWords.quoted();
      return;
    }
    m_sFault.effects.answer = code();
    if (m_cWords.ended()) {
      return;
    }
    m_cWords.expect("with");
    if (is_of_scanner() && word_but_for(kWithoutLastError, "error")) {
      m_sFault.effects.error = code();
    } else if (word_for(kSizeGivers, "size") || word_for(kLengthGivers, "length")) {
      m_sFault.effects.size = m_cWords.whole_number();
    } else {
      m_cWords.refuse_here();
    }
  }

  void read_gift() {
    if (word_for(kHandleGivers, "a")) {
      m_cWords.expect("null");
      m_cWords.expect("handle");
      m_sFault.effects.null_handle = true;
    } else if (word_for(kDescriptionGivers, "text")) {
      m_cWords.expect("of");
      m_sFault.effects.size = m_cWords.whole_number_between(0, kLongestDescription);
      m_cWords.expect("characters");
    } else if (word_for(kReticent, "no")) {
      m_cWords.expect("text");
      m_sFault.effects.no_text = true;
    } else if (is_one_of(kFrameSizeGivers)) {
      const int width = signed_32_bits();
      m_cWords.expect("x");
      m_sFault.effects.frame_size = {width, signed_32_bits()};
    } else if (is_one_of(kMemorySizeGivers)) {
      m_sFault.effects.size = signed_32_bits();
    } else if (is_one_of(kPartGivers)) {
      m_sFault.effects.size = m_cWords.whole_number_between(0, kAbsentPart);
    } else if (is_one_of(kScoreGivers)) {
      m_sFault.effects.number = m_cWords.accept("nan") ? std::nan("") : m_cWords.number();
    } else {
      m_cWords.refuse_here();
    }
  }

  /// A number that a function answers or fails with. Those of the scanner library have 32 bits,
  /// with a sign or without.
  long code() {
    constexpr long kLowest = std::numeric_limits<std::int32_t>::min();
    constexpr long kHighest = std::numeric_limits<std::uint32_t>::max();
    return is_of_scanner() ? m_cWords.whole_number_between(kLowest, kHighest)
                           : m_cWords.whole_number();
  }

  int signed_32_bits() {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<int>(m_cWords.whole_number_between(Limits::min(), Limits::max()));
  }

  /// Only the scanner library has a last error.
  bool is_of_scanner() const {
    return std::string_view(name_of(m_sFault.function)).starts_with("ftr");
  }

  bool is_one_of(Functions functions) const {
    return std::find(functions.begin(), functions.end(), m_sFault.function) != functions.end();
  }

  bool word_for(Functions functions, std::string_view word) {
    return is_one_of(functions) && m_cWords.accept(word);
  }

  bool word_but_for(Functions functions, std::string_view word) {
    return !is_one_of(functions) && m_cWords.accept(word);
  }

  Words m_cWords;
  Fault m_sFault;
};

}  // namespace

void Effects::add(const Effects& other) {
  const auto take = [](auto& mine, const auto& others) {
    if (others) {
      mine = others;
    }
  };
  take(fails_with, other.fails_with);
  take(answer, other.answer);
  take(error, other.error);
  take(number, other.number);
  take(size, other.size);
  take(frame_size, other.frame_size);
  take(text, other.text);
  take(null_handle, other.null_handle);
  take(no_text, other.no_text);
  take(blocks, other.blocks);
}

std::vector<Fault> parse_faults(const std::string& words) {
  std::vector<Fault> faults;
  std::string_view rest = words;
  while (!rest.empty()) {
    // A semicolon inside quotes belongs to the text.
    bool quoted = false;
    std::size_t end = 0;
    for (; end < rest.size() && (quoted || (rest[end] != ';' && rest[end] != '\n')); ++end) {
      quoted ^= rest[end] == '\'';
    }
    const std::string_view line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (line.find_first_not_of(" \t\r") != std::string_view::npos) {
      faults.push_back(FaultReader(line).read());
    }
  }
  return faults;
}

}  // namespace Osv::simulator
