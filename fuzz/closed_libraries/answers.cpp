#include "closed_libraries/answers.h"

#include <array>

#include "closed_libraries/scene.h"

namespace Osv::fuzz {
namespace {

constexpr std::uint32_t kNoDevice = 259;
constexpr long kNotConnected = 2;
constexpr std::uint32_t kOwnNumber = 3;  // of four values so many give one of a table

}  // namespace

Answers& answers() {
  static Answers all;
  return all;
}

void Answers::begin(Bytes script) {
  m_script.assign(script.begin(), script.end());
  m_position = 0;
  m_lasting.clear();
  m_told.clear();
  take_record();
}

void Answers::take_record() {
  Input input(Bytes(m_script).subspan(m_position));
  const std::size_t before = input.left();
  if (before == 0) {
    m_next = {};
    return;
  }
  constexpr unsigned int kKinds = 4;
  m_calls_before = input.byte();
  m_next.kind = static_cast<eFault>(1 + input.below(kKinds));
  m_next.value = input.number<std::uint32_t>();
  m_position += before - input.left();
}

Fault Answers::next(const char* function) {
  if (m_next.kind != eFault::None && m_calls_before == 0) {
    const Fault fault = m_next;
    take_record();
    if (fault.kind == eFault::Unplugs) {
      scene().change_units(fault.value);
      return {};
    }
    if (fault.kind == eFault::FailsFromNowOn) {
      m_lasting[function] = {eFault::Fails, fault.value};
      return m_lasting[function];
    }
    return fault;
  }
  m_calls_before -= m_next.kind == eFault::None ? 0 : 1;
  const auto lasting = m_lasting.find(function);
  return lasting == m_lasting.end() ? Fault() : lasting->second;
}

std::uint32_t Answers::tell(std::uint32_t number) {
  if (number == kNoDevice) {
    m_told.insert(kNotConnected);
    return number;
  }
  m_told.insert(number);
  m_told.insert(static_cast<std::int32_t>(number));
  return number;
}

long Answers::tell(long number) {
  m_told.insert(number);
  m_told.insert(static_cast<std::int32_t>(number));
  return number;
}

std::uint32_t Answers::scanner_error(std::uint32_t value) {
  constexpr std::array<std::uint32_t, 14> kNumbers = {
      0,    2,          8,          31,         87,         121,        259,
      4306, 0x20000001, 0x20000002, 0x20000003, 0x20000004, 0x20000005, 0x20000006};
  return tell(value % 4 < kOwnNumber ? kNumbers[value / 4 % kNumbers.size()] : value / 4);
}

long Answers::code(std::uint32_t value) {
  constexpr std::array<long, 10> kCodes = {-1, -2, -6, -15, -21, -37, -767, -768, -799, -800};
  return value % 4 < kOwnNumber ? kCodes[value / 4 % kCodes.size()]
                                : static_cast<std::int32_t>(value | 1);
}

}  // namespace Osv::fuzz
