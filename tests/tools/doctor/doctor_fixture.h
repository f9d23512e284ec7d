#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <string>

#include "hvk3/doctor/examination.h"
#include "support/closed_libraries.h"
#include "support/simulator_fixture.h"

/// @file
/// The ground for tests of what the doctor looks at.

namespace hvk3::test {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr char kScannerLibrary[] = "libKR9ScanAPI.so";
constexpr char kEngineLibrary[] = "libostrevancalibratesdk.so";
constexpr char kDetectorLibrary[] = "libostrevanfakefingerdetection.so";
constexpr char kLogLibrary[] = "libostrevanlf.so";

class DoctorTest : public Osv::simulator::SimulatorFixture {
 protected:
  /// The examination with no configuration file.
  static Examination examine() { return examine_all("/nonexistent/ostrevanhvk3.cfg"); }

  static Findings findings() { return judge(examine()); }

  /// The finding about a subject.
  static Finding finding(const std::string& subject) {
    const Findings all = findings();
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const Finding& each) { return each.subject == subject; });
    return found != all.end() ? *found : Finding{eFinding::Good, "", "no such finding", ""};
  }

  static long defects() {
    const Findings all = findings();
    return std::count_if(all.begin(), all.end(),
                         [](const Finding& each) { return each.kind == eFinding::Bad; });
  }

  Osv::simulator::ClosedLibraries m_libraries;
};

}  // namespace hvk3::test
