#pragma once

#include "hvk3/doctor/examination.h"
#include "hvk3/report.h"

/// @file
/// How the doctor's result is printed.

namespace hvk3 {

/// Adds what was read to the JSON object.
void report_examination(Report& report, const Examination& examination);

/// Adds what it means, in both forms.
void report_findings(Report& report, const Findings& findings);

}  // namespace hvk3
