#pragma once

#include "support/input.h"
#include "support/require.h"

/// @file
/// What every target brings. It is linked either with clang's libFuzzer, which grows inputs by the
/// coverage that they reach, or with replay.cpp.

namespace Osv::fuzz {

/// One run, in the target's own reading of the bytes. What it finds ends the process.
void run(Input input);

}  // namespace Osv::fuzz

/// The entry that both know.
/// @return 0
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
