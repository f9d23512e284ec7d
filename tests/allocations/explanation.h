#pragma once

#include <string>
#include <vector>

#include "allocations/shortage.h"
#include "faults/driver_model.h"
#include "faults/scenario.h"

/// @file
/// What the client sees of a failed allocation.

namespace Osv::allocations {

/// A way in which a step can have gone.
struct Explanation {
  faults::DriverModel model;  ///< behind the step
  std::string line;           ///< what the client is to have of it; a `*` stands for anything
  std::string end;            ///< what the failed allocation came to
};

/// Every way in which a step can have gone during which these allocations failed: as with all
/// memory, when the plug-in can do without, and for each of them in the failure that it causes
/// there.
/// @param model in front of the step
std::vector<Explanation> ways_of(const faults::DriverModel& model, const faults::Step& step,
                                 const std::vector<FailedAllocation>& failures);

/// Whether a step gets the frame grabber, which may come to nothing but the report of a failure.
bool gets_grabber(const faults::Step& step);

}  // namespace Osv::allocations
