#include "hvk3/doctor/examination.h"

#include <array>

namespace hvk3 {
namespace {

/// The scanner library does without some functions: which ones it needs, its binding knows.
Finding judge_library(const LibraryFindings& findings, const ScannersFindings& scanners) {
  Finding finding = judge(findings);
  const bool is_scanner_library = findings.library == &closed_libraries().front();
  if (is_scanner_library && !findings.path.empty() && scanners.library_failure.empty() &&
      scanners.api_level != 0 && finding.kind == eFinding::Bad) {
    finding.kind = eFinding::Note;
    finding.text += "; only the protected bytes need them";
    finding.remedy = "Install a newer libKR9ScanAPI.so to use the protected bytes.";
  }
  return finding;
}

}  // namespace

const char* name_of(eFinding kind) {
  constexpr std::array kNames = {"good", "note", "bad"};
  return kNames.at(static_cast<std::size_t>(kind));
}

Examination examine_all(const std::string& configuration) {
  Examination examination;
  for (const ClosedLibrary& library : closed_libraries()) {
    examination.libraries.push_back(examine(library));
  }
  examination.scanners = examine_scanners();
  examination.configuration = examine_configuration(configuration);
  return examination;
}

Findings judge(const Examination& examination) {
  Findings all;
  for (const LibraryFindings& library : examination.libraries) {
    all.push_back(judge_library(library, examination.scanners));
  }
  const Findings scanners = judge(examination.scanners);
  all.insert(all.end(), scanners.begin(), scanners.end());
  all.push_back(judge(examination.configuration));
  return all;
}

}  // namespace hvk3
