#pragma once

#include <atomic>
#include <cstdint>

#include "libraries/stand_in.h"

/// @file
/// The control of the stand-ins that cost nothing but the copy of a frame.
///
/// They have the closed libraries' file names and lie in a folder of their own. A program that
/// links them finds them loaded when the plug-in asks for those names. Set what is to be before
/// capture starts; one thread at a time.

namespace Osv::bench {

/// What the scanner library does.
struct ScannerControl {
  int width = 640;
  int height = 480;
  int interfaces = 1;             ///< scanners in the list, from interface 0 on
  std::atomic<bool> busy{false};  ///< true: every frame call is refused with "busy"
  bool clocked = false;           ///< true: note when a frame call returns
  std::int64_t returned_at = 0;   ///< nanoseconds of the steady clock
  const void* buffer = nullptr;   ///< what the last frame call filled
};

/// What the calibration engine was given last.
struct EngineControl {
  const void* input = nullptr;
  const void* output = nullptr;
};

/// What the detector does, and what it was asked.
struct DetectorControl {
  double score = 100.0;
  unsigned long property_writes = 0;
  unsigned long property_reads = 0;  ///< calls: a read takes two, one of them for the length
  unsigned long other_calls = 0;
};

}  // namespace Osv::bench

OSV_STAND_IN Osv::bench::ScannerControl* ostrevan_bench_scanner();
OSV_STAND_IN Osv::bench::EngineControl* ostrevan_bench_engine();
OSV_STAND_IN Osv::bench::DetectorControl* ostrevan_bench_detector();

/// Log lines so far.
OSV_STAND_IN unsigned long ostrevan_bench_log_lines();
