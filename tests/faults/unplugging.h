#pragma once

#include <string>
#include <vector>

#include "faults/effect.h"

/// @file
/// What holds for every unplugging, whatever call it comes behind.

namespace Osv::faults {

/// Where a capture met an unplugging.
enum class eNoticed {
  OnAFrame,       ///< a disconnection: the scanner is closed
  InPreparation,  ///< the preparation's own failure: the scanner is held for open
  WhileOpening,   ///< the start or the preparation could not open the scanner
  NotYet          ///< images came, and no error but an injected one
};

eNoticed noticed(const std::string& capture);

/// An error of the error callback that is a disconnection, told once and followed by the stop.
bool is_disconnection(const std::string& capture);

/// Images came, and no error.
bool is_good_capture(const std::string& capture);

/// The capture of a scenario for unpluggings that was met.
const std::string& met_capture(const std::vector<std::string>& lines);

/// @param lines of a scenario for unpluggings
/// @return what does not hold, empty for nothing
std::string findings_of_unplugging(const std::vector<std::string>& lines, const Incident& incident);

}  // namespace Osv::faults
