#include "hvk3/doctor/report.h"

namespace hvk3 {
namespace {

using Json = nlohmann::ordered_json;
using Osv::eFamily;

template <class Value>
Json or_null(const std::optional<Value>& value) {
  return value ? Json(*value) : Json();
}

Json or_null(const std::string& text) { return text.empty() ? Json() : Json(text); }

Json to_json(const LibraryFindings& library) {
  return {{"name", library.library->name},
          {"needed", library.library->needed},
          {"path", or_null(library.path)},
          {"failure", or_null(library.error)},
          {"missing", library.missing}};
}

/// Null for a signature that was not looked at.
Json signature(eFamily result) {
  return result == eFamily::Member || result == eFamily::NoSignature
             ? Json(result == eFamily::Member)
             : Json();
}

Json payload(const InterfaceFindings& findings) {
  if (!findings.opening) {
    return "not-tested";
  }
  return findings.opening->failure.empty() ? "accepted" : "refused";
}

Json output(const InterfaceFindings& findings) {
  if (!findings.opening || !findings.opening->failure.empty()) {
    return Json();
  }
  return {{"width", findings.opening->width}, {"height", findings.opening->height}};
}

Json to_json(const InterfaceFindings& findings) {
  const Osv::FamilyFindings& family = findings.family;
  return {{"interface", findings.interface},
          {"opened", family.result != eFamily::NotOpened},
          {"model", or_null(family.model)},
          {"memory_size", or_null(family.memorySize)},
          {"block_version", or_null(family.blockVersion)},
          {"description_length", or_null(description_length(family))},
          {"signature", signature(family.result)},
          {"serial", or_null(findings.serial)},
          {"payload", payload(findings)},
          {"output", output(findings)}};
}

template <class Range>
Json to_array(const Range& range) {
  Json array = Json::array();
  for (const auto& each : range) {
    array.push_back(to_json(each));
  }
  return array;
}

std::string to_text(const Finding& finding) {
  const std::string kind = name_of(finding.kind);
  const std::string line = kind + "  " + (kind.size() < 4 ? " " : "");
  const std::string remedy = finding.remedy.empty() ? "" : "      -> " + finding.remedy + '\n';
  return line + finding.subject + ": " + finding.text + '\n' + remedy;
}

}  // namespace

void report_examination(Report& report, const Examination& examination) {
  const ScannersFindings& scanners = examination.scanners;
  report["libraries"] = to_array(examination.libraries);
  report["api_level"] = scanners.library_failure.empty() ? Json(scanners.api_level) : Json();
  report["interfaces"] = to_array(scanners.interfaces);
  report["configuration"] = {{"path", examination.configuration.path},
                             {"state", name_of(examination.configuration.state)}};
}

void report_findings(Report& report, const Findings& findings) {
  Json& array = report["findings"] = Json::array();
  for (const Finding& finding : findings) {
    array.push_back({{"kind", name_of(finding.kind)},
                     {"subject", finding.subject},
                     {"text", finding.text},
                     {"remedy", or_null(finding.remedy)}});
    report.text(to_text(finding));
  }
}

}  // namespace hvk3
