#include <algorithm>
#include <array>

#include "hvk3/doctor/scanners.h"

namespace hvk3 {
namespace {

using Osv::eFamily;

constexpr char kService[] = "Have the scanner looked at by its maker.";
constexpr char kCalibrate[] = "Have the scanner calibrated anew by its maker.";
constexpr char kReplug[] = "Plug the device out and in again, and look again.";

struct Reason {
  eFamily result;
  const char* text;
  const char* remedy;
};

/// Such a length, taken as signed, spoils the last two steps of the family test, whose results
/// would hide the cause.
bool is_description_too_long(const Osv::FamilyFindings& family) {
  constexpr int kLongest = 127;
  return description_length(family) > kLongest &&
         (family.result == eFamily::BlockTooLong || family.result == eFamily::NoSignature);
}

const Reason& reason_of(const Osv::FamilyFindings& family) {
  static constexpr Reason kDescriptionTooLong = {
      eFamily::BlockTooLong,
      "has a description longer than 127 bytes in its calibration block, which the list of "
      "scanners does not accept",
      kCalibrate};
  static constexpr std::array kReasons = {
      Reason{eFamily::NotOpened, "can't be opened",
             "Close other programs that use the device, give your user the right to open it, and "
             "plug it out and in again."},
      Reason{eFamily::NoModel, "does not tell its model", kReplug},
      Reason{eFamily::OtherModel, "is of a model that is none of this family (1 or 4)",
             "The plug-in does not drive this device; it needs another one."},
      Reason{eFamily::BaseApi,
             "can't be told from other devices: the scanner library is too old for its memory",
             "Install a newer libKR9ScanAPI.so."},
      Reason{eFamily::NoMemorySize, "does not tell the size of its extended memory", kReplug},
      Reason{eFamily::NoMemory, "has no extended memory, so no calibration data", kService},
      Reason{eFamily::MemoryUnreadable, "does not let its extended memory be read", kReplug},
      Reason{eFamily::OtherBlockVersion,
             "has no calibration block of version 1 in its extended memory", kCalibrate},
      Reason{eFamily::BlockTooLong, "has a calibration block that does not fit its memory",
             kCalibrate},
      Reason{eFamily::BlockUnreadable, "does not let all of its calibration block be read",
             kReplug},
      Reason{eFamily::NoSignature, "has a calibration block without the signature of its payload",
             kCalibrate},
      Reason{eFamily::Member, "gives no serial number", kReplug}};
  if (is_description_too_long(family)) {
    return kDescriptionTooLong;
  }
  return *std::find_if(kReasons.begin(), kReasons.end(),
                       [&](const Reason& reason) { return reason.result == family.result; });
}

std::string with_number(const std::string& text, long number) {
  return number == 0 ? text : text + " (error " + std::to_string(number) + ')';
}

/// What was read of the device, in the order in which it is read.
std::string data_of(const InterfaceFindings& findings) {
  const Osv::FamilyFindings& family = findings.family;
  std::string text = findings.serial ? "scanner " + *findings.serial : "";
  const auto add = [&text](const std::string& part) { text += (text.empty() ? "" : ", ") + part; };
  if (family.model) {
    add("model " + std::to_string(*family.model));
  }
  if (family.memorySize) {
    add("memory of " + std::to_string(*family.memorySize) + " bytes");
  }
  if (family.blockVersion) {
    add("block version " + std::to_string(*family.blockVersion));
  }
  if (const std::optional<int> length = description_length(family)) {
    add("description of " + std::to_string(*length) + " bytes");
  }
  if (family.result == eFamily::Member) {
    add("signature present");
  }
  return text;
}

std::string subject_of(const InterfaceFindings& findings) {
  return "interface " + std::to_string(findings.interface);
}

Finding judge_opening(const InterfaceFindings& findings) {
  const std::string data = data_of(findings);
  if (!findings.opening) {
    return {eFinding::Good, subject_of(findings),
            data + "; payload not tested: not the first of the list", ""};
  }
  const OpeningFindings& opening = *findings.opening;
  if (!opening.failure.empty()) {
    return {eFinding::Bad, subject_of(findings),
            data + "; does not open: " + with_number(opening.failure, opening.number), kCalibrate};
  }
  return {eFinding::Good, subject_of(findings),
          data + "; payload accepted, images of " + std::to_string(opening.width) + " x " +
              std::to_string(opening.height) + " pixels",
          ""};
}

Finding judge_interface(const InterfaceFindings& findings) {
  if (findings.serial) {
    return judge_opening(findings);
  }
  const Reason& reason = reason_of(findings.family);
  const std::string data = data_of(findings);
  return {eFinding::Bad, subject_of(findings),
          with_number(reason.text, static_cast<long>(findings.error)) +
              (data.empty() ? "" : ": " + data),
          reason.remedy};
}

Finding judge_api_level(const ScannersFindings& findings) {
  const std::string text = "API level " + std::to_string(findings.api_level);
  if (findings.api_level == 0) {
    return {eFinding::Bad, "scanner library",
            text + ": it can't reach the extended memory, so no scanner can be told from others",
            "Install a newer libKR9ScanAPI.so."};
  }
  return {eFinding::Good, "scanner library", text, ""};
}

}  // namespace

std::optional<int> description_length(const Osv::FamilyFindings& family) {
  constexpr int kByte = 0xFF;
  return family.descriptionLength ? std::optional(*family.descriptionLength & kByte) : std::nullopt;
}

Findings judge(const ScannersFindings& findings) {
  if (!findings.library_failure.empty()) {
    return {{eFinding::Bad, "scanner library", "can't be used: " + findings.library_failure,
             "Mend the library first: see libKR9ScanAPI.so above."}};
  }
  Findings all = {judge_api_level(findings)};
  if (!findings.listed) {
    all.push_back(
        {eFinding::Bad, "interfaces",
         with_number("the scanner library does not tell which interfaces have devices",
                     static_cast<long>(findings.error)),
         "Look whether the system sees the device at all (lsusb), and plug it in again."});
  } else if (findings.interfaces.empty()) {
    all.push_back({eFinding::Bad, "interfaces", "no interface has a device",
                   "Plug the scanner in; look whether the system sees it (lsusb), and try another "
                   "cable or port."});
  }
  for (const InterfaceFindings& each : findings.interfaces) {
    all.push_back(judge_interface(each));
  }
  return all;
}

}  // namespace hvk3
