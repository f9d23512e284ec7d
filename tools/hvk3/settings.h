#pragma once

#include <string>
#include <vector>

#include "hvk3/property.h"

/// @file
/// Properties that a command sets before it does its work.

namespace hvk3 {

struct Setting {
  Property property;
  unsigned int value;
};

/// @param text NAME=VALUE @throws Failure `Usage`
Setting parse_setting(const std::string& text);

/// Sets them in their order. @throws Failure
void apply(Osv::lx::ClFramegrabber& grabber, const std::vector<Setting>& settings);

}  // namespace hvk3
