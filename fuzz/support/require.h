#pragma once

/// @file
/// How a target says what has to hold.

namespace Osv::fuzz {

/// Ends the process as a finding unless `holds`.
void require(bool holds, const char* what);

}  // namespace Osv::fuzz
