#include "faults/storm.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "faults/client.h"
#include "faults/deadline.h"
#include "faults/driver_model.h"
#include "faults/heap.h"
#include "faults/leaks.h"
#include "faults/scenario.h"
#include "faults/stage.h"
#include "faults/threads.h"
#include "support/closed_libraries.h"
#include "support/sleeps.h"

namespace Osv::faults {
namespace {

/// What a process holds at a moment.
struct Holdings {
  std::size_t descriptors = 0;
  std::size_t blocks = 0;    ///< of memory
  std::size_t bytes = 0;     ///< in them
  std::size_t resident = 0;  ///< pages
};

Holdings holdings() {
  const std::filesystem::directory_iterator descriptors("/proc/self/fd");
  std::ifstream memory("/proc/self/statm");
  std::size_t whole = 0;
  Holdings now;
  memory >> whole >> now.resident;
  now.descriptors = static_cast<std::size_t>(std::distance(begin(descriptors), end(descriptors)));
  now.blocks = static_cast<std::size_t>(live_blocks().value_or(0));
  now.bytes = static_cast<std::size_t>(live_bytes().value_or(0));
  return now;
}

/// One unplugging while a frame is under way, and one while nothing is captured.
const Scenario& storm() {
  using enum eStep;
  static const Scenario cycle = {"storm",
                                 {{0}},
                                 simulator::eFingerKind::Live,
                                 {{Live, 4, 0, Unplugging{1}},
                                  {PlugInAgain, 0},
                                  {Live, 1},
                                  {Unplug, 0},
                                  {PlugInAgain, 0},
                                  {Live, 1},
                                  {Choose, 127},
                                  {Live, 1}}};
  return cycle;
}

std::string predicted_cycle() {
  DriverModel model(storm(), 0);
  std::string predicted;
  for (const Step& step : storm().steps) {
    predicted += model.run(step) + "\n";
  }
  return predicted;
}

std::string cycle(Client& client) {
  std::string seen;
  for (const Step& step : storm().steps) {
    seen += client.run(step) + "\n";
  }
  test::Sleeps().forget();
  simulator::ClosedLibraries::forget_openings();
  return seen;
}

std::string check_growth(const Holdings& before, const Holdings& after) {
  // The blocks come down to the same number. Which pages of the heap, of a thread's stack and of
  // the libraries' files are in the machine's memory is the system's to say, and differs a little.
  constexpr std::size_t kResident = 256;  // pages
  std::string grown;
  const auto check = [&](const char* what, std::size_t from, std::size_t to, std::size_t slack) {
    if (to > from + slack) {
      grown += std::string(what) + " grew from " + std::to_string(from) + " to " +
               std::to_string(to) + "\n";
    }
  };
  check("descriptors", before.descriptors, after.descriptors, 0);
  check("blocks of memory", before.blocks, after.blocks, 0);
  check("allocated bytes", before.bytes, after.bytes, before.blocks * kMoreThanAsked);
  if (!is_watched()) {
    check("resident pages", before.resident, after.resident, kResident);
  }
  return grown;
}

}  // namespace

std::string unplug_again_and_again(unsigned int cycles) {
  constexpr unsigned int kWarming = 10;
  const std::string predicted = predicted_cycle();
  lay_out(storm());
  Deadline deadline;
  Client client;
  deadline.begin("the first cycles");
  for (unsigned int i = 0; i < kWarming; ++i) {
    cycle(client);
  }
  const Threads known = threads();
  const Holdings before = holdings();
  for (unsigned int i = 0; i < cycles; ++i) {
    deadline.begin("cycle " + std::to_string(i));
    if (const std::string seen = cycle(client); seen != predicted) {
      return "cycle " + std::to_string(i) + " has\n" + seen + "and not\n" + predicted;
    }
  }
  if (!are_all(known)) {
    return "a thread is left\n";
  }
  // A block that is gone after another cycle is no growth.
  constexpr unsigned int kLooks = 4;
  std::string grown = check_growth(before, holdings());
  for (unsigned int look = 1; look < kLooks && !grown.empty(); ++look) {
    cycle(client);
    grown = check_growth(before, holdings());
  }
  return grown;
}

}  // namespace Osv::faults
