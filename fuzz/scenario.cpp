#include <algorithm>
#include <array>
#include <cctype>
#include <stdexcept>
#include <string>
#include <string_view>

#include "bench/recorded_call.h"
#include "ostrevanhvk3_simulator/bench.h"
#include "support/target.h"

/// @file
/// Scenario files and fault plans in the simulator's words: they are understood or refused with
/// where and why, and a scene goes on under any of them.

namespace Osv::fuzz {
namespace {

using simulator::Bench;

/// What takes no part: calls that block until somebody else releases them, pictures from anywhere
/// on the machine, and lines after lines that each make a new print.
bool is_in_question(const std::string& text) {
  constexpr std::size_t kMostPrints = 2;
  std::size_t prints = 0;
  for (std::size_t at = text.find("print"); at != std::string::npos;
       at = text.find("print", at + 1)) {
    ++prints;
  }
  return text.find("blocks") == std::string::npos && text.find('/') == std::string::npos &&
         prints <= kMostPrints;
}

/// Does something that is refused in one of two ways. @return whether it was done
template <typename Action>
bool accepted(Action action) {
  try {
    action();
    return true;
  } catch (const std::invalid_argument& refusal) {
    require(*refusal.what() != '\0', "a refusal tells why");
  } catch (const std::runtime_error& refusal) {
    require(*refusal.what() != '\0', "a failure tells why");
  }
  return false;
}

/// Calls that end, for lines that wait for them.
void call_some(unsigned int calls) {
  using simulator::eFunction;
  constexpr std::array kFunctions = {eFunction::ftrScanGetImageByVariableDose,
                                     eFunction::ftrScanGetInterfaces, eFunction::Calibrate};
  for (unsigned int i = 0; i < calls; ++i) {
    simulator::RecordedCall call(kFunctions[i % kFunctions.size()], "SensitiveMode");
    call.arguments("number %u", i);
    call.result("%d", 1);
  }
}

void carry_out(Bench& bench, const std::string& text) {
  constexpr unsigned int kCalls = 12;
  const bool understood = accepted([&] { bench.set_scenario(text); });
  require(understood || bench.scenario().ended, "nothing of a refused scenario is carried out");
  call_some(kCalls);
  bench.scenario();
}

void say(Bench& bench, const std::string& text) {
  std::size_t begin = 0;
  while (begin < text.size()) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    const std::string line = text.substr(begin, end - begin);
    accepted([&] { bench.run(line); });
    begin = end + 1;
  }
  call_some(3);
}

/// A number is one to its end: what stands behind it is not forgotten.
void require_no_zeros(Bench& bench, const std::string& text) {
  const std::string line = text.substr(0, text.find('\n'));
  const std::size_t zero = line.find('\0');
  if (zero != std::string::npos && line.find_first_of("#'") == std::string::npos) {
    require(!accepted([&] { bench.run(line); }), "a zero byte is no end of a word");
    require(!accepted([&] { bench.set_faults(line); }), "a zero byte is no end of a fault");
  }
}

}  // namespace

/// The first byte chooses how the text behind it is given.
void run(Input input) {
  Bench& bench = *ostrevan_simulator_bench();
  bench.reset();
  bench.set_pace(0);
  const unsigned int way = input.below(4);
  bench.record(way % 2 == 0);
  const Bytes bytes = input.rest();
  const std::string text(bytes.begin(), bytes.end());
  if (!is_in_question(text)) {
    return;
  }
  require_no_zeros(bench, text);
  if (way == 0) {
    carry_out(bench, text);
  } else if (way == 1) {
    say(bench, text);
  } else {
    accepted([&] { bench.set_faults(text); });
    accepted([&] { bench.add_faults(text); });
    call_some(6);
  }
  bench.reset();
}

}  // namespace Osv::fuzz
