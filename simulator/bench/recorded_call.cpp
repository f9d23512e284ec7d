#include "bench/recorded_call.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <utility>

#include "bench/simulation.h"

namespace Osv::simulator {
namespace {

constexpr std::size_t kLongestWords = 2048;

std::string format_words(const char* format, std::va_list arguments) {
  std::array<char, kLongestWords> text = {};
  std::vsnprintf(text.data(), text.size(), format, arguments);
  return text.data();
}

}  // namespace

RecordedCall::RecordedCall(eFunction function, const char* subject) : m_eFunction(function) {
  Simulation& all = simulation();
  all.journal.count_call(function);
  m_sEffects = all.faults.on_call(function, subject);
  if (all.journal.recording()) {
    m_sRecord.emplace();
    m_sRecord->function = name_of(function);
  }
}

RecordedCall::~RecordedCall() {
  if (m_sRecord.has_value()) {
    m_sRecord->last_error = last_error();
    simulation().journal.add(std::move(*m_sRecord));
  }
  Bench& bench = *ostrevan_simulator_bench();
  simulation().scenario.call_ended(bench, m_eFunction);
  simulation().console.call_ended(bench, m_eFunction);
}

void RecordedCall::arguments(const char* format, ...) {
  if (m_sRecord.has_value()) {
    std::va_list words;
    va_start(words, format);
    m_sRecord->arguments = format_words(format, words);
    va_end(words);
  }
}

void RecordedCall::result(const char* format, ...) {
  if (m_sRecord.has_value()) {
    std::va_list words;
    va_start(words, format);
    m_sRecord->result = format_words(format, words);
    va_end(words);
  }
}

Quoted::Quoted(const char* text) {
  std::snprintf(m_aText, kSize, text == nullptr ? "null" : "'%s'", text);
}

std::uint32_t last_error() { return simulation().last_error; }

void set_last_error(std::uint32_t error) { simulation().last_error = error; }

}  // namespace Osv::simulator
