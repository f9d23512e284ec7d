#pragma once

#include <optional>
#include <string>
#include <vector>

#include "hvk3/image.h"
#include "ostrevanhvk3/framegrabber.h"

/// @file
/// What the commands ask a frame grabber, with its results turned into values and failures.

namespace hvk3 {

/// One scanner of the list.
struct ListedScanner {
  unsigned int interface = 0;
  std::string serial;  ///< printable: other bytes are written as \xNN
};

/// A scanner's description of itself.
struct ScannerInfo {
  std::string name;
  std::string serial;
  std::vector<std::string> versions;
};

/// @throws Failure with the plug-in's number and text, unless `result` is 0
void check(Osv::lx::ClFramegrabber& grabber, unsigned long result);

/// The attached scanners, possibly none.
std::vector<ListedScanner> list_scanners(Osv::lx::ClFramegrabber& grabber);

/// Whether there is a scanner at an interface, or any at all.
bool is_attached(Osv::lx::ClFramegrabber& grabber, std::optional<unsigned int> interface);

/// The scanner at an interface, or the first of the list.
/// @throws Failure `NoScanner` when it isn't there
ListedScanner find_scanner(Osv::lx::ClFramegrabber& grabber, std::optional<unsigned int> interface);

/// Chooses the scanner at an interface, or the first of the list, and opens it.
/// @throws Failure `NoScanner` when it isn't there
ListedScanner choose_scanner(Osv::lx::ClFramegrabber& grabber,
                             std::optional<unsigned int> interface);

/// Choose a scanner before the first call: the plug-in keeps this description for good.
ScannerInfo describe_scanner(Osv::lx::ClFramegrabber& grabber);

/// One image at once, whatever lies on the platen.
Image take_image(Osv::lx::ClFramegrabber& grabber);

/// The dirt on the platen, on which nothing may lie.
double measure_contamination(Osv::lx::ClFramegrabber& grabber);

/// The version of the plug-in's interface.
std::string interface_version(Osv::lx::ClFramegrabber& grabber);

/// The capture modes that the plug-in offers, by name.
std::vector<std::string> capture_modes(Osv::lx::ClFramegrabber& grabber);

}  // namespace hvk3
