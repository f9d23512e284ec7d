#pragma once

#include <string>
#include <vector>

/// @file
/// The test program's own `dlopen`: a closed library that the machine may have is never loaded,
/// only what a test put in its place.

namespace Osv::testing_support {

/// Forgets the calls so far and puts `path` in the place of the library `name`; an empty path makes
/// it absent, as it is at first.
void put_in_place_of(const std::string& name, const std::string& path);

/// As `put_in_place_of`, but the library is absent without a text of the loader.
void put_silence_in_place_of(const std::string& name);

/// One call of `dlopen` for a closed library.
struct LoaderCall {
  std::string name;
  int mode;
};

/// The calls since the last `put_in_place_of`.
const std::vector<LoaderCall>& loader_calls();

}  // namespace Osv::testing_support
