#pragma once

#include <functional>
#include <string>
#include <vector>

#include "frames.h"

/// @file
/// What is measured: kernels, each with its candidates for the same work.

namespace Osv::bench {

/// One way to do a kernel's work on a frame. It may change the frame, which is noise at first.
struct Candidate {
  /// "ours", "SSE2" for ours with that instruction set, "limit", or the name of a library.
  std::string name;
  std::function<void(utilities::ClSimpleBitmap&)> work;
};

struct Kernel {
  std::string name;
  std::vector<std::string> names;  ///< of its candidates

  /// The candidates for frames of a size; each result has been compared with the plain one's.
  std::function<std::vector<Candidate>(Size)> candidates;
};

/// Ends the program unless what was computed is what was expected.
void require(bool equal, const std::string& what);

std::vector<Kernel> image_kernels();
std::vector<Kernel> detection_kernels();
std::vector<Kernel> rescale_kernels();

}  // namespace Osv::bench
