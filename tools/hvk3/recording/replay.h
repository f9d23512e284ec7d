#pragma once

#include <optional>
#include <string>
#include <vector>

#include "hvk3/console.h"
#include "hvk3/failure.h"

/// @file
/// Programs in front of a recording.

namespace hvk3 {

/// How a replay ended.
struct ReplayEnd {
  int status = 0;                  ///< of the program
  std::optional<Failure> failure;  ///< why the program was ended: it diverged from the recording
};

/// Runs a program on what a recording holds.
/// @throws Failure `Usage` for what is no recording or a damaged one
ReplayEnd replay(const std::string& recording, const std::vector<std::string>& program,
                 Console& console);

/// Whether this program itself runs on a recording.
bool is_replay();

/// Whether this program itself is recorded, on the libraries of that folder.
/// @throws Failure `Usage` when it is recorded on others
bool is_recorded_on(const std::string& folder);

}  // namespace hvk3
