// Plays a scenario to a program that knows nothing of the simulator, from before its main on:
// SCENARIO=FILE LD_PRELOAD=libscenario.so PROGRAM
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "ostrevanhvk3_simulator/bench.h"

namespace {

// The loader finds the bench where it will find the stand-ins, and gives them the same one.
Osv::simulator::Bench& open_bench() {
  void* const library = dlopen("libostrevan-simulator.so", RTLD_NOW);
  if (library == nullptr) {
    throw std::runtime_error(dlerror());
  }
  using Function = Osv::simulator::Bench* (*)();
  return *reinterpret_cast<Function>(dlsym(library, "ostrevan_simulator_bench"))();
}

// A program that is not steered as it should be proves nothing: it ends here.
__attribute__((constructor)) void play() {
  const char* const path = std::getenv("SCENARIO");
  if (path == nullptr) {
    return;
  }
  try {
    open_bench().load_scenario(path);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", path, error.what());
    std::exit(2);
  }
}

}  // namespace
