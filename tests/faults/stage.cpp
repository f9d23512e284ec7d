#include "faults/stage.h"

#include <algorithm>
#include <map>

#include "faults/client.h"
#include "ostrevanhvk3/enumerations.h"
#include "ostrevanhvk3_simulator/bench.h"
#include "support/sleeps.h"

namespace Osv::faults {
namespace {

simulator::Bench& bench() { return *ostrevan_simulator_bench(); }

bool is_counted(const std::string& function) { return !function.starts_with("OsvLF"); }

/// Whether a text is as predicted; a `*` stands for anything.
bool is_as_predicted(const std::string& got, const std::string& predicted) {
  std::size_t place = 0;
  std::size_t from = 0;
  while (true) {
    const std::size_t star = predicted.find('*', from);
    const std::string piece = predicted.substr(from, star - from);
    const std::size_t found = star == std::string::npos && from != 0
                                  ? got.size() - std::min(got.size(), piece.size())
                                  : got.find(piece, place);
    if (found == std::string::npos || found < place || (from == 0 && found != 0) ||
        got.compare(found, piece.size(), piece) != 0) {
      return false;
    }
    place = found + piece.size();
    if (star == std::string::npos) {
      return place == got.size();
    }
    from = star + 1;
  }
}

}  // namespace

std::string difference(const std::string& got, const std::string& predicted) {
  return is_as_predicted(got, predicted) ? "" : "  " + got + "\n  and not\n  " + predicted + "\n";
}

std::string check_counts(const Answers& answers) {
  std::string wrong;
  for (std::size_t i = 0; i < simulator::kFunctionCount; ++i) {
    const std::string name = simulator::kFunctionNames[i];
    const unsigned int made = bench().count(name);
    if (made != answers.counts()[i] && is_counted(name)) {
      wrong += "  " + name + " was called " + std::to_string(made) + " times and not " +
               std::to_string(answers.counts()[i]) + "\n";
    }
  }
  return wrong;
}

std::string check_order(const Answers& answers) {
  std::vector<std::string> made;
  for (const simulator::Call& call : bench().calls()) {
    if (is_counted(call.function)) {
      made.push_back(call.function);
    }
  }
  std::vector<std::string> predicted;
  for (const simulator::eFunction function : answers.calls()) {
    predicted.emplace_back(simulator::name_of(function));
  }
  const auto [own, other] =
      std::mismatch(made.begin(), made.end(), predicted.begin(), predicted.end());
  if (own == made.end() && other == predicted.end()) {
    return "";
  }
  return "  call " + std::to_string(own - made.begin() + 1) + " was of " +
         (own == made.end() ? "nothing" : *own) + " and not of " +
         (other == predicted.end() ? "nothing" : *other) + "\n";
}

std::string check_census(const DriverModel& model) {
  const simulator::Census census = bench().census();
  std::string wrong;
  const auto check = [&](const char* what, unsigned int got, unsigned int predicted) {
    if (got != predicted) {
      wrong +=
          "  " + std::to_string(got) + ' ' + what + " and not " + std::to_string(predicted) + "\n";
    }
  };
  check("handles of scanners are open", census.scanner_handles, model.answers().open_handles());
  check("engines are alive", census.engines, 0);
  check("detectors are alive", census.detectors, 0);
  check("instances were left behind", census.left_behind, model.lost_detectors());
  check("things were given back twice", census.wrong_releases, 0);
  return wrong;
}

unsigned int calls_made() {
  unsigned int calls = 0;
  for (const char* const name : simulator::kFunctionNames) {
    calls += is_counted(name) ? bench().count(name) : 0;
  }
  return calls;
}

void lay_out(const Scenario& scenario) {
  bench().reset();
  bench().set_pace(0);
  bench().set_timeline(simulator::Timeline::settled_finger());
  bench().set_finger_kind(scenario.finger);
  bench().list_from_base(true);
  for (const Attached& device : scenario.attached) {
    bench().plug_in(device.interface,
                    {.serial = device.serial.value_or(serial_of(device.interface)),
                     .model = device.model,
                     .frame_width = device.frames.first,
                     .frame_height = device.frames.second,
                     .memory = device.memory});
    if (device.away) {
      bench().unplug(device.interface);
    }
  }
  test::Sleeps().forget();
}

double own_score(const Scenario& scenario) {
  static std::map<simulator::eFingerKind, double> scores;
  lay_out(scenario);
  const auto [score, is_new] = scores.try_emplace(scenario.finger, 0);
  if (is_new) {
    Client client;
    client.run({eStep::SetProperty, ePropFakeDetection, 1});
    client.run({eStep::SetProperty, ePropLiveliness, 1});
    client.run({eStep::Snap});
    score->second = client.score();
  }
  return score->second;
}

}  // namespace Osv::faults
