// Tests an application on simulated scanners: application_test FOLDER-OF-SIMULATOR
// The bench's header needs C++17, and the compiler that the simulator was built with.
#include <cstdio>
#include <string>

#include "application.h"
#include "ostrevanhvk3_simulator/bench.h"

namespace {

using Osv::simulator::Bench;
using Osv::simulator::Timeline;

// Opens the stand-ins by their path, before the plug-in asks for their names: the loader then gives
// it these. They stay open until the process ends.
Bench& open_simulator(const std::string& folder) {
  void* bench = nullptr;
  for (const char* name :
       {"libKR9ScanAPI.so", "libostrevancalibratesdk.so", "libostrevanfakefingerdetection.so",
        "libostrevanlf.so", "libostrevan-simulator.so"}) {
    bench = dlopen((folder + "/" + name).c_str(), RTLD_NOW);
    if (bench == nullptr) {
      throw std::runtime_error(dlerror());
    }
  }
  return *reinterpret_cast<Bench* (*)()>(dlsym(bench, "ostrevan_simulator_bench"))();
}

int failures = 0;

void expect(const char* what, bool holds) {
  std::printf("%s: %s\n", holds ? "passed" : "FAILED", what);
  failures += holds ? 0 : 1;
}

// Each test begins with one scanner, an empty platen and frames without a wait.
void begin(Bench& bench) {
  bench.reset();
  bench.set_pace(0);
  bench.set_timeline(Timeline::empty_platen());
}

void a_finger_is_enrolled(Bench& bench) {
  begin(bench);
  bench.set_timeline(Timeline::settled_finger());
  expect("a finger is enrolled", enrol().finger.size() == 498UL * 438UL);
}

void an_unplugged_scanner_is_reported(Bench& bench) {
  begin(bench);
  bench.set_scenario("wait 20 frames\nunplug 0\n");
  expect("an unplugged scanner is reported", enrol().trouble == "connect the scanner");
}

void a_missing_scanner_is_reported(Bench& bench) {
  begin(bench);
  bench.unplug_all();
  expect("a missing scanner is reported", enrol().trouble == "connect the scanner");
}

void a_broken_scanner_is_reported(Bench& bench) {
  begin(bench);
  bench.set_faults("ftrScanGetImageByVariableDose from call 3 on fails with 1460");
  expect("a broken scanner is reported", enrol().trouble == "call the help desk");
}

void nothing_is_left_behind(Bench& bench) {
  begin(bench);
  bench.set_timeline(Timeline::settled_finger());
  enrol();
  expect("nothing is left behind",
         bench.census().scanner_handles == 0 && bench.census().engines == 0);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("application_test FOLDER-OF-SIMULATOR\n", stderr);
    return 2;
  }
  Bench& bench = open_simulator(argv[1]);
  a_finger_is_enrolled(bench);
  an_unplugged_scanner_is_reported(bench);
  a_missing_scanner_is_reported(bench);
  a_broken_scanner_is_reported(bench);
  nothing_is_left_behind(bench);
  return failures == 0 ? 0 : 1;
}
