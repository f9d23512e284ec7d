#pragma once

#include <vector>

#include "measure.h"

/// @file
/// The measurements of frame_bench, each in a process of its own.

namespace Osv::bench {

std::vector<Row> overhead();  ///< the plug-in beside a bare loop and an integrator's
std::vector<Row> growth();    ///< the same for ten sizes
std::vector<Row> pause();     ///< between two frames
std::vector<Row> rate();      ///< frames per second
std::vector<Row> latency();   ///< from the scanner's return to the callback
std::vector<Row> latency_with_log();
std::vector<Row> allocations();  ///< and copies
std::vector<Row> rest();         ///< processor time while nothing is to do
std::vector<Row> lock();         ///< how long a client waits for the driver's lock
std::vector<Row> fake_finger();  ///< what the path with fake finger detection adds
std::vector<Row> threshold();    ///< the search on the detector's curves
std::vector<Row> memory();       ///< what the library keeps resident
std::vector<Row> start();        ///< from nothing to the first image
std::vector<Row> listing();      ///< of 1, 8 and 128 interfaces

}  // namespace Osv::bench
