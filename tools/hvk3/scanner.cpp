#include "hvk3/scanner.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>

#include "hvk3/failure.h"
#include "hvk3/printable.h"
#include "ostrevanhvk3/errors.h"

namespace hvk3 {
namespace {

using Osv::lx::ClFramegrabber;
using Osv::lx::ErrorNumber;

constexpr unsigned int kChannel = 1;

bool is_too_small(unsigned long result) {
  return ErrorNumber(result) == Osv::lx::error_number::BufferTooSmall;
}

/// Asks for room beyond the needed size too: the object that stands for a failed construction
/// counts its text without the final zero and wants two bytes more.
std::string last_error(ClFramegrabber& grabber) {
  unsigned long size = 0;
  grabber.GetLastError(nullptr, size);
  size += 2;
  std::vector<char> text(size);
  grabber.GetLastError(text.data(), size);
  return text.data();
}

ListedScanner to_listed(const DeviceInfo& device) {
  return {device.nInterface, printable(device.szSerialNumber, sizeof(device.szSerialNumber))};
}

/// The texts of a description, each ended by a zero, the last one by two.
std::vector<std::string> split(const std::vector<char>& texts) {
  std::vector<std::string> parts;
  for (auto begin = texts.begin(); begin != texts.end() && *begin != '\0';) {
    const auto end = std::find(begin, texts.end(), '\0');
    parts.push_back(printable(&*begin, static_cast<std::size_t>(end - begin)));
    begin = end == texts.end() ? end : end + 1;
  }
  return parts;
}

/// The scanner at the interface, or the first one.
auto find_at(const std::vector<ListedScanner>& scanners, std::optional<unsigned int> interface) {
  return std::find_if(scanners.begin(), scanners.end(), [&](const ListedScanner& scanner) {
    return scanner.interface == interface.value_or(scanner.interface);
  });
}

}  // namespace

void check(ClFramegrabber& grabber, unsigned long result) {
  if (result != 0) {
    const std::string text = last_error(grabber);
    throw Failure(ErrorNumber(result), text.empty() ? "the plug-in gives no reason" : text);
  }
}

std::vector<ListedScanner> list_scanners(ClFramegrabber& grabber) {
  std::vector<DeviceInfo> devices;
  unsigned long count = 0;
  unsigned long result = grabber.AvailableDevices(nullptr, count);
  while (is_too_small(result)) {  // one more may be plugged in between two calls
    devices.resize(count);
    result = grabber.AvailableDevices(devices.data(), count);
  }
  check(grabber, result);
  devices.resize(count);
  std::vector<ListedScanner> scanners;
  std::transform(devices.begin(), devices.end(), std::back_inserter(scanners), to_listed);
  return scanners;
}

bool is_attached(ClFramegrabber& grabber, std::optional<unsigned int> interface) {
  const std::vector<ListedScanner> scanners = list_scanners(grabber);
  return find_at(scanners, interface) != scanners.end();
}

ListedScanner find_scanner(ClFramegrabber& grabber, std::optional<unsigned int> interface) {
  const std::vector<ListedScanner> scanners = list_scanners(grabber);
  const auto found = find_at(scanners, interface);
  if (found == scanners.end()) {
    throw Failure(ExitStatus::NoScanner,
                  interface ? "no scanner at interface " + std::to_string(*interface)
                            : "no scanner is attached");
  }
  return *found;
}

ListedScanner choose_scanner(ClFramegrabber& grabber, std::optional<unsigned int> interface) {
  const ListedScanner scanner = find_scanner(grabber, interface);
  check(grabber, grabber.SetActiveDevice(scanner.interface));
  return scanner;
}

ScannerInfo describe_scanner(ClFramegrabber& grabber) {
  unsigned long size = 0;
  unsigned long result = grabber.GetInfo(nullptr, size);
  std::vector<char> texts(size);
  if (is_too_small(result)) {
    result = grabber.GetInfo(texts.data(), size);
  }
  check(grabber, result);
  const std::vector<std::string> parts = split(texts);
  if (parts.empty()) {  // a library that fails without a reason lets the call succeed
    throw Failure(ExitStatus::ScannerFailed, "the scanner gives no description");
  }
  constexpr std::size_t kVersions = 2;
  ScannerInfo info{parts[0], parts.size() > 1 ? parts[1] : "", {}};
  for (std::size_t i = kVersions; i < parts.size(); ++i) {
    info.versions.push_back(parts[i]);
  }
  return info;
}

Image take_image(ClFramegrabber& grabber) {
  unsigned char* block = nullptr;
  check(grabber, grabber.GetImage(kChannel, &block));
  if (block == nullptr) {  // a library that fails without a reason lets the call succeed
    throw Failure(ExitStatus::ScannerFailed, "the scanner gives no image");
  }
  const auto give_back = [&grabber](unsigned char* image) { grabber.FreeImage(image); };
  const std::unique_ptr<unsigned char, decltype(give_back)> owner(block, give_back);
  return Image(block);
}

double measure_contamination(ClFramegrabber& grabber) {
  double level = std::numeric_limits<double>::quiet_NaN();
  check(grabber, grabber.ContaminationDetection(kChannel, &level));
  if (std::isnan(level)) {
    throw Failure(ExitStatus::ScannerFailed, "the scanner gives no measure");
  }
  return level;
}

std::string interface_version(ClFramegrabber& grabber) {
  std::array<char, 64> text = {};
  unsigned long size = text.size();
  return grabber.GetVersion(text.data(), size) == 0 ? text.data() : "";
}

std::vector<std::string> capture_modes(ClFramegrabber& grabber) {
  constexpr std::array<const char*, 6> kNames = {"live",       "plain",   "rolled",
                                                 "fast-plain", "preview", "preview-auto"};
  std::array<eCaptureModeIDs, kNames.size()> modes = {};
  unsigned long count = modes.size();
  std::vector<std::string> names;
  if (grabber.AvailableDetections(modes.data(), count) == 0) {
    std::for_each(modes.data(), modes.data() + count, [&](eCaptureModeIDs mode) {
      names.emplace_back(mode < kNames.size() ? kNames[mode] : std::to_string(mode));
    });
  }
  return names;
}

}  // namespace hvk3
