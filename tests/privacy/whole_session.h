#pragma once

#include "client/plugin.h"
#include "ostrevanhvk3_simulator/bench.h"
#include "support/sleeps.h"

/// @file
/// A session in which a client does everything that the plug-in can do.

namespace Osv::privacy {

/// What the scanner keeps for the client, and for nobody else.
struct ProtectedBytes {
  simulator::SevenBytes code = {};        ///< the authorization code that the client sets
  simulator::SevenBytes wrong_code = {};  ///< one that the scanner refuses
  simulator::SevenBytes bytes = {};       ///< the protected bytes
};

/// Lists and chooses the scanner, describes it, sets and reads everything, takes images, captures
/// live and plain, with fake finger detection and without, meets failures of scanner and engine,
/// an unplugging and corrupt calibration data, and gives the frame grabber back.
/// @throws std::runtime_error naming what did not come out as it should
void run_whole_session(const client::Plugin& plugin, simulator::Bench& bench,
                       const test::Sleeps& sleeps, const ProtectedBytes& bytes);

}  // namespace Osv::privacy
