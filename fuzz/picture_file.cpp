#include <stdexcept>
#include <vector>

#include "ostrevanhvk3_simulator/bench.h"
#include "support/memory.h"
#include "support/scratch_file.h"
#include "support/target.h"

/// @file
/// Pictures that somebody gives the simulator as a finger: 8-bit gray PNG and BMP files, or
/// anything else, which is refused with a reason.

namespace Osv::fuzz {
namespace {

using Pixels = std::vector<unsigned char>;

/// The pixels of a picture, none when it is refused.
Pixels loaded(const ScratchFile& file) {
  constexpr int kLargestSide = 4096;
  simulator::Bench& bench = *ostrevan_simulator_bench();
  try {
    bench.load_finger(file.path());
  } catch (const std::runtime_error& refusal) {
    require(*refusal.what() != '\0', "a refusal tells why");
    return {};
  }
  const simulator::GrayImage finger = bench.finger();
  require(finger.width >= 1 && finger.width <= kLargestSide && finger.height >= 1 &&
              finger.height <= kLargestSide,
          "a finger has a size");
  require(finger.pixels.size() ==
              static_cast<std::size_t>(finger.width) * static_cast<std::size_t>(finger.height),
          "a finger has its pixels");
  return finger.pixels;
}

}  // namespace

void run(Input input) {
  const ScratchFile file(input.rest());
  written_whole([&] { return loaded(file); });
}

}  // namespace Osv::fuzz
