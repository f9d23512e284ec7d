#pragma once

#include <string>

#include "recorder/format/entries.h"

/// @file
/// The file of a new recording.

namespace hvk3 {

/// Makes a recording without calls, for the user alone, in place of nothing, of an empty file or of
/// an earlier recording.
/// @return its absolute path
/// @throws Failure `OutputFailed`, also when another file is there
std::string create_recording(const std::string& path, const Osv::recorder::Header& header);

}  // namespace hvk3
