/// @file
/// Loaded in front of the tool: the system has no event descriptor to spare.

#include <sys/eventfd.h>

#include <cerrno>

extern "C" __attribute__((visibility("default"))) int eventfd(unsigned int /*value*/,
                                                              int /*flags*/) noexcept {
  errno = EMFILE;
  return -1;
}
