#include <cstdlib>
#include <exception>
#include <iostream>

#include "soak/client_loop.h"
#include "soak/footprint.h"
#include "support/closed_libraries.h"
#include "support/sleeps.h"

/// @file
/// hvk3_soak FRAMES: captures so many frames with everything that can come between them, and prints
/// what the process holds after each round, as a table with commas. None of the plug-in's waits
/// takes time. Fails when anything grows.

int main(int count, char** arguments) {
  const long frames = count == 2 ? std::atol(arguments[1]) : 0;
  if (frames <= 0) {
    std::cerr << "usage: hvk3_soak FRAMES\n";
    return 2;
  }
  try {
    Osv::soak::ClientLoop client;
    constexpr long kLeastFrames = 100;  // of a round
    Osv::soak::Curve curve(static_cast<std::size_t>(frames / kLeastFrames + 1));
    std::cout << "frames,resident,heap,blocks,descriptors,threads\n";
    while (client.frames() < frames) {
      {
        // Their records of a round end with it, so that only the plug-in's own memory is seen.
        const Osv::simulator::ClosedLibraries libraries;
        const Osv::test::Sleeps sleeps;
        client.round(sleeps);
      }
      const Osv::soak::Footprint now = Osv::soak::footprint(client.frames());
      std::cout << now.frames << ',' << now.resident << ',' << now.heap << ',' << now.blocks << ','
                << now.descriptors << ',' << now.threads << '\n';
      curve.add(now);
    }
    const std::string growth = curve.growth();
    std::cerr << growth;
    return growth.empty() ? EXIT_SUCCESS : EXIT_FAILURE;
  } catch (const std::exception& failure) {
    std::cerr << failure.what() << '\n';
    return EXIT_FAILURE;
  }
}
