#pragma once

#include <string>
#include <vector>

/// @file
/// The test program's own `dlopen`: a library that the machine may have is never loaded, only what
/// a test put in its place.

namespace Osv::testing_support {

/// Puts `path` in the place of the logging facility; an empty one makes the facility absent.
void put_in_place_of_logging_facility(const std::string& path);

/// One call of `dlopen`.
struct LoaderCall {
  std::string name;
  int mode;
};

/// The calls since the last `put_in_place_of_logging_facility`.
const std::vector<LoaderCall>& loader_calls();

}  // namespace Osv::testing_support
