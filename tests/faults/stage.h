#pragma once

#include <string>

#include "faults/answers.h"
#include "faults/driver_model.h"
#include "faults/scenario.h"

/// @file
/// The scene of a run, and what is looked at behind it.

namespace Osv::faults {

/// Puts the bench into the state that a scenario begins with.
void lay_out(const Scenario& scenario);

/// What the detector gives the finger of a scenario, which is laid out for it.
double own_score(const Scenario& scenario);

/// Both texts, unless what was got is as predicted. A `*` stands for anything.
std::string difference(const std::string& got, const std::string& predicted);

/// Calls into the closed libraries since the scene was laid out, without lines of the log.
unsigned int calls_made();

/// The calls of which the plug-in made more or less than predicted.
std::string check_counts(const Answers& answers);

/// The first call, of those that were recorded, that is another than predicted.
std::string check_order(const Answers& answers);

/// What the plug-in holds of the libraries and should not, or has given back and should not have.
std::string check_census(const DriverModel& model);

}  // namespace Osv::faults
