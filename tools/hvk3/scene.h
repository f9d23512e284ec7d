#pragma once

#include <string>

/// @file
/// What `--simulate` and its options say.

namespace hvk3 {

struct Scene {
  std::string libraries;  ///< folder of the stand-ins; empty: the one beside this installation
  std::string finger;     ///< picture file; empty: the built-in print
  bool empty = false;     ///< nobody lays a finger on the platen
  unsigned int scanners = 1;
  unsigned int pace = 15;  ///< frames per second, 0 for as fast as it goes
  std::string faults;      ///< the simulator's words
  std::string script;      ///< file with a scenario in the simulator's words, - for standard input
  std::string log_file;
  bool log_to_stderr = false;
};

}  // namespace hvk3
