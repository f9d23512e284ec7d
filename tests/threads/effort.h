#pragma once

#include <cstdlib>
#include <string>

/// @file
/// How often tests in which threads meet repeat themselves.

namespace Osv::threads {

/// `usual` times in an ordinary run of the tests, `sanitized` times with a sanitizer, which makes
/// everything slower, or as many times as the environment asks for under this name: scripts/threads
/// does that.
inline int effort(const char* name, [[maybe_unused]] int usual, [[maybe_unused]] int sanitized) {
  const char* const asked = std::getenv(name);
  if (asked != nullptr) {
    return std::stoi(asked);
  }
#ifdef HVK3_SANITIZED
  return sanitized;
#else
  return usual;
#endif
}

}  // namespace Osv::threads
