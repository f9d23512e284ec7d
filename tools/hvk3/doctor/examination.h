#pragma once

#include <string>
#include <vector>

#include "hvk3/doctor/closed_library.h"
#include "hvk3/doctor/configuration.h"
#include "hvk3/doctor/scanners.h"

/// @file
/// All that the doctor looks at but the plug-in itself.

namespace hvk3 {

struct Examination {
  std::vector<LibraryFindings> libraries;
  ScannersFindings scanners;
  ConfigurationFindings configuration;
};

/// @param configuration path of the configuration file
Examination examine_all(const std::string& configuration);

/// What it all means, libraries first.
Findings judge(const Examination& examination);

}  // namespace hvk3
