#pragma once

#include <optional>
#include <string>
#include <vector>

#include "driver/device/family.h"
#include "hvk3/doctor/finding.h"

/// @file
/// Every device that the scanner library sees, and what keeps it out of the list of scanners.

namespace hvk3 {

/// How the plug-in's opening of a scanner goes on behind the list.
struct OpeningFindings {
  std::string failure;  ///< empty: the calibration engine took the payload
  long number = 0;      ///< of the failure
  int width = 0;        ///< of the corrected images, in pixels
  int height = 0;
};

struct InterfaceFindings {
  int interface = 0;
  Osv::FamilyFindings family;
  unsigned long error = 0;                 ///< the scanner's, for a device that can't be opened
  std::optional<std::string> serial;       ///< none: it can't be read
  std::optional<OpeningFindings> opening;  ///< only of the unit that the plug-in would open first
};

struct ScannersFindings {
  std::string
      library_failure;  ///< why the scanner library can't be used; nothing else is known then
  unsigned int api_level = 0;
  bool listed = false;      ///< the library tells which interfaces have devices
  unsigned long error = 0;  ///< the scanner's, when it does not
  std::vector<InterfaceFindings> interfaces;
};

/// Opens and closes each device in turn, and the first scanner of the list once more for its
/// payload. Switches that one's LEDs off.
ScannersFindings examine_scanners();

/// Bytes of a block's description, as its writer counts them: the family test takes the same byte
/// as signed.
std::optional<int> description_length(const Osv::FamilyFindings& family);

/// What the findings mean.
Findings judge(const ScannersFindings& findings);

}  // namespace hvk3
