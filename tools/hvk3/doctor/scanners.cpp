#include "hvk3/doctor/scanners.h"

#include <algorithm>

#include "driver/calibration/calibration.h"
#include "driver/device/futronic_base_sdk.h"
#include "foundation/bitmap.h"
#include "foundation/exceptions.h"
#include "foundation/image_functions.h"
#include "hvk3/printable.h"
#include "ostrevanhvk3/errors.h"

namespace hvk3 {
namespace {

using Osv::ClFutronicBaseSDK;
using Osv::eFamily;
using Osv::lx::CXCalibration;
using Osv::utilities::ClSimpleBitmap;

[[noreturn]] void throw_scanner_error(ClFutronicBaseSDK& device, const char* text) {
  throw Osv::lx::ClLXException(text, static_cast<int>(device.GetLastError()));
}

/// A blank frame of the scanner's size.
void create_raw(ClFutronicBaseSDK& device, ClSimpleBitmap& raw) {
  constexpr unsigned long kBits = 8;
  __FTRSCAN_IMAGE_SIZE size{};
  if (!device.GetImageSize(&size)) {
    throw_scanner_error(device, "the size of its frames can't be read");
  }
  if (size.nWidth <= 0 || size.nHeight <= 0) {
    throw Osv::lx::ClLXException("its frames have no size", 0);
  }
  raw.Create(static_cast<unsigned long>(size.nWidth), static_cast<unsigned long>(size.nHeight),
             kBits, 0);
  raw.SetBlack();
}

void switch_to_long_image(ClFutronicBaseSDK& device) {
  if (!device.SetLongImage() && device.GetLastError() != Osv::lx::error_number::ScannerHardware) {
    throw_scanner_error(device, "it can't be switched to the long image");
  }
}

/// Corrects a blank frame as the plug-in does before its first one, for the size alone.
void correct_blank_frame(ClFutronicBaseSDK& device, CXCalibration& calibration,
                         OpeningFindings& findings) {
  ClSimpleBitmap raw;
  create_raw(device, raw);
  const unsigned long rawSize = Osv::img::bmp_size(raw.BI());
  unsigned long size = calibration.ResultImageSize(raw.BI(), rawSize);
  std::vector<unsigned char> block(std::max({size, rawSize, sizeof(tagBITMAPINFOHEADER)}));
  auto* const header = reinterpret_cast<tagBITMAPINFOHEADER*>(block.data());
  calibration.CalibrateBitmap(raw.BI(), rawSize, header, &size);
  findings.width = header->biWidth;
  findings.height = header->biHeight;
}

OpeningFindings examine_opening(ClFutronicBaseSDK& device) {
  OpeningFindings findings;
  try {
    switch_to_long_image(device);
    CXCalibration calibration(device);
    correct_blank_frame(device, calibration, findings);
  } catch (const Osv::CXOtherException& failure) {
    findings.failure = failure.GetDescription();
    findings.number = failure.GetErrorNumber();
    if (findings.failure.empty()) {
      findings.failure = "no reason is given";
    }
  } catch (const std::exception& failure) {
    findings.failure = failure.what();
  }
  return findings;
}

InterfaceFindings examine_interface(ClFutronicBaseSDK& device, int interface) {
  InterfaceFindings findings;
  findings.interface = interface;
  findings.family = device.Family(interface);
  if (findings.family.result == eFamily::NotOpened) {
    findings.error = device.GetLastError();
  }
  return findings;
}

/// Enters what the list of scanners knows of the interfaces.
void take_serials(const std::vector<DeviceInfo>& list, std::vector<InterfaceFindings>& interfaces) {
  for (InterfaceFindings& findings : interfaces) {
    for (const DeviceInfo& scanner : list) {
      if (scanner.nInterface == static_cast<unsigned int>(findings.interface)) {
        findings.serial = printable(scanner.szSerialNumber, sizeof(scanner.szSerialNumber));
      }
    }
  }
}

/// Opens the first scanner of the list, as the plug-in does.
void open_first(ClFutronicBaseSDK& device, std::vector<InterfaceFindings>& interfaces) {
  const auto first = std::find_if(interfaces.begin(), interfaces.end(),
                                  [](const auto& each) { return each.serial.has_value(); });
  if (first == interfaces.end()) {
    return;
  }
  if (!device.Initialize()) {
    first->opening = OpeningFindings{"it can't be opened once more",
                                     static_cast<long>(device.GetLastError()), 0, 0};
    return;
  }
  first->opening = examine_opening(device);
}

void examine_interfaces(ClFutronicBaseSDK& device, ScannersFindings& findings) {
  std::vector<int> numbers;
  findings.listed = device.AttachedInterfaces(numbers);
  if (!findings.listed) {
    findings.error = device.GetLastError();
    return;
  }
  for (const int number : numbers) {
    findings.interfaces.push_back(examine_interface(device, number));
  }
  std::vector<DeviceInfo> list;
  device.GetKR9ScannerList(list);
  take_serials(list, findings.interfaces);
  open_first(device, findings.interfaces);
}

}  // namespace

ScannersFindings examine_scanners() {
  ScannersFindings findings;
  ClFutronicBaseSDK device;
  try {
    device.OpenLibrary();
    findings.api_level = device.ApiLevel();
    examine_interfaces(device, findings);
  } catch (const Osv::CXOtherException& failure) {
    findings.library_failure = failure.GetDescription();
  }
  return findings;
}

}  // namespace hvk3
