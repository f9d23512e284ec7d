// Loads the plug-in from the path in HVK3_PLUGIN and has a whole session with it, without a word.
// For programs that watch what a process does. None of the plug-in's waits takes time.

#include <cstdio>
#include <exception>

#include "privacy/whole_session.h"
#include "support/sleeps.h"

int main() {
  try {
    Osv::simulator::Bench& bench = *ostrevan_simulator_bench();
    bench.set_pace(0);
    const Osv::test::Sleeps sleeps;
    const Osv::client::Plugin plugin;
    Osv::privacy::run_whole_session(plugin, bench, sleeps, {{1}, {2}, {3}});
    return 0;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
  }
}
