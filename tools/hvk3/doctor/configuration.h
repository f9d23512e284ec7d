#pragma once

#include <string>

#include "hvk3/doctor/finding.h"

/// @file
/// The configuration file that the plug-in reads at each opening of a scanner.

namespace hvk3 {

enum class eConfiguration { Absent, Read, Unreadable, Broken };

struct ConfigurationFindings {
  std::string path;
  eConfiguration state = eConfiguration::Absent;
  std::string failure;  ///< why it is broken
};

ConfigurationFindings examine_configuration(const std::string& path);

/// What the findings mean.
Finding judge(const ConfigurationFindings& findings);

/// The state in words, as the JSON output has it.
const char* name_of(eConfiguration state);

}  // namespace hvk3
