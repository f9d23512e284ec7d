#pragma once

/// @file
/// How the program ends. docs/hvk3.md lists the numbers for users; keep both alike.

namespace hvk3 {

enum class ExitStatus {
  Ok = 0,
  Internal = 1,           ///< something that should not happen
  Usage = 2,              ///< wrong options, input that can't be used, or a scene that can't be set
  NoScanner = 3,          ///< none attached or at the interface asked for, or unplugged meanwhile
  ScannerFailed = 4,      ///< any other failure of an operation, or any other error of capture
  Timeout = 5,            ///< the wanted images did not come in time
  OutputFailed = 6,       ///< the image or standard output can't be written
  PluginUnavailable = 7,  ///< the plug-in or the simulator can't be loaded
  DefectFound = 8,        ///< `doctor` found something that keeps a scanner from working
  Diverged = 9,           ///< a program under `replay` did not do what was recorded
  Interrupted = 128       ///< plus the number of the signal: 130 for Ctrl-C
};

/// The status in words, as the JSON output has it.
const char* name_of(ExitStatus status);

}  // namespace hvk3
