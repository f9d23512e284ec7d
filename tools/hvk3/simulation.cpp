#include "hvk3/simulation.h"

#include <array>
#include <filesystem>
#include <stdexcept>

#include "hvk3/failure.h"
#include "hvk3/installation.h"
#include "hvk3/recording/replay.h"
#include "ostrevanhvk3_simulator/bench.h"

namespace hvk3 {
namespace {

using Osv::simulator::Bench;

// The control stands first: its address is asked for.
constexpr std::array<const char*, 5> kLibraries = {
    "libostrevan-simulator.so", "libKR9ScanAPI.so", "libostrevancalibratesdk.so",
    "libostrevanfakefingerdetection.so", "libostrevanlf.so"};

constexpr char kStandardInput[] = "-";

std::filesystem::path folder_of(const Scene& scene) {
  const std::filesystem::path folder =
      scene.libraries.empty() ? simulator_folder() : std::filesystem::path(scene.libraries);
  return std::filesystem::absolute(folder);
}

void plug_in_scanners(Bench& bench, unsigned int count) {
  bench.unplug_all();
  for (unsigned int interface = 0; interface < count; ++interface) {
    constexpr unsigned int kFirstSerial = 30001;
    Osv::simulator::Device device;
    device.serial = "HVK" + std::to_string(kFirstSerial + interface);
    device.seed = interface + 1;
    bench.plug_in(interface, device);
  }
  // A plug-in opens the first scanner of the list, so the list has to begin with the chosen one.
  bench.list_from_base(true);
}

void set_finger(Bench& bench, const Scene& scene) {
  if (scene.empty) {
    bench.set_timeline(Osv::simulator::Timeline::empty_platen());
  } else if (!scene.finger.empty()) {
    bench.load_finger(scene.finger);
  }
}

void set_log(Bench& bench, const Scene& scene) {
  using Osv::simulator::eLogTarget;
  if (!scene.log_file.empty()) {
    bench.set_log(eLogTarget::File, scene.log_file);
  } else if (scene.log_to_stderr) {
    bench.set_log(eLogTarget::StandardError, "");
  }
}

void set_scene(Bench& bench, const Scene& scene) {
  bench.reset();
  plug_in_scanners(bench, scene.scanners);
  set_finger(bench, scene);
  bench.set_pace(scene.pace);
  set_log(bench, scene);
  bench.set_faults(scene.faults);
  if (!scene.script.empty() && scene.script != kStandardInput) {
    bench.load_scenario(scene.script);
  }
}

}  // namespace

Simulation::Simulation(const Scene& scene, Console& console) {
  const std::filesystem::path folder = folder_of(scene);
  // Recorded, the stand-ins are opened by the forwarders that stand in front of them.
  const std::size_t count = is_recorded_on(folder) ? 1 : kLibraries.size();
  m_vLibraries.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    m_vLibraries.emplace_back((folder / kLibraries[i]).string());
  }
  try {
    set_scene(bench(), scene);
  } catch (const std::exception& error) {
    throw Failure(ExitStatus::Usage, error.what());
  }
  if (scene.script == kStandardInput) {
    m_cFeed.emplace(bench(), console);
  }
}

Bench& Simulation::bench() const {
  return *m_vLibraries.front().function<decltype(&ostrevan_simulator_bench)>(
      "ostrevan_simulator_bench")();
}

std::string Simulation::trouble() const { return bench().scenario().trouble; }

}  // namespace hvk3
