#pragma once

#include <string>
#include <vector>

#include "faults/effect.h"

/// @file
/// What holds for every unplugging, whatever call it comes behind.

namespace Osv::faults {

/// An error of the error callback that is a disconnection, told once and followed by the stop.
bool is_disconnection(const std::string& capture);

/// Images came, and no error.
bool is_good_capture(const std::string& capture);

/// @param lines of a scenario for unpluggings
/// @return what does not hold, empty for nothing
std::string findings_of_unplugging(const std::vector<std::string>& lines, eReturn comes_back);

}  // namespace Osv::faults
