#include "hvk3/doctor/closed_library.h"

#include <fstream>

#include "support/temporary_folder.h"
#include "tools/doctor/doctor_fixture.h"

namespace hvk3::test {
namespace {

using ClosedLibraryTest = DoctorTest;

TEST_F(ClosedLibraryTest, IsToldWithThePathThatIsMapped) {
  for (const ClosedLibrary& library : closed_libraries()) {
    const LibraryFindings found = hvk3::examine(library);
    EXPECT_EQ(found.path, Osv::simulator::ClosedLibraries::plain_path(library.name));
    EXPECT_THAT(found.missing, IsEmpty());
    EXPECT_EQ(judge(found).kind, eFinding::Good);
  }
}

TEST_F(ClosedLibraryTest, ThatIsMissingIsADefectWithAPlaceToPutIt) {
  for (const char* const name : {kScannerLibrary, kEngineLibrary}) {
    m_libraries.make_absent(name);
    const Finding found = finding(name);
    EXPECT_EQ(found.kind, eFinding::Bad);
    EXPECT_THAT(found.text, HasSubstr("can't be loaded: "));
    EXPECT_THAT(found.text, HasSubstr("cannot open shared object file"));
    EXPECT_THAT(found.remedy, HasSubstr("/usr/local/lib"));
  }
}

TEST_F(ClosedLibraryTest, ThatNoScannerNeedsIsOnlyNoted) {
  for (const char* const name : {kDetectorLibrary, kLogLibrary}) {
    m_libraries.make_absent(name);
    EXPECT_EQ(finding(name).kind, eFinding::Note);
  }
  EXPECT_THAT(finding(kDetectorLibrary).text, HasSubstr("only fake finger detection needs it"));
  EXPECT_EQ(defects(), 0);
}

TEST_F(ClosedLibraryTest, NamesTheLibraryThatItDependsOn) {
  m_libraries.use_file(kScannerLibrary, HVK3_NEEDS_LIBRARY);
  const Finding found = finding(kScannerLibrary);
  EXPECT_EQ(found.kind, eFinding::Bad);
  EXPECT_THAT(found.text, HasSubstr("libhvk3_absent_dependency.so"));
  EXPECT_THAT(found.remedy, HasSubstr("one that it depends on is not"));
}

TEST_F(ClosedLibraryTest, NamesTheFunctionThatNoLibraryGivesIt) {
  m_libraries.use_file(kEngineLibrary, HVK3_NEEDS_FUNCTION);
  const Finding found = finding(kEngineLibrary);
  EXPECT_EQ(found.kind, eFinding::Bad);
  EXPECT_THAT(found.text, HasSubstr("undefined symbol: hvk3_absent_function"));
  EXPECT_THAT(found.remedy, HasSubstr("of another version"));
}

TEST_F(ClosedLibraryTest, ThatIsNoLibraryIsToBeInstalledAnew) {
  const TemporaryFolder folder;
  std::ofstream(folder.file("text")) << "no library";
  m_libraries.use_file(kEngineLibrary, folder.file("text"));
  const Finding found = finding(kEngineLibrary);
  EXPECT_EQ(found.kind, eFinding::Bad);
  EXPECT_THAT(found.remedy, HasSubstr("Install the library anew"));
}

TEST_F(ClosedLibraryTest, ThatLacksANeededFunctionIsADefect) {
  m_libraries.leave_out(kEngineLibrary, "CalibrateSetOption");
  const Finding found = finding(kEngineLibrary);
  EXPECT_EQ(found.kind, eFinding::Bad);
  EXPECT_THAT(found.text, HasSubstr(" lacks CalibrateSetOption"));
  EXPECT_THAT(found.remedy, HasSubstr("correcting images needs them"));
}

TEST_F(ClosedLibraryTest, NamesEveryFunctionThatItLacks) {
  m_libraries.use_file(kLogLibrary, Osv::simulator::ClosedLibraries::plain_path(kDetectorLibrary));
  EXPECT_THAT(hvk3::examine(closed_libraries().back()).missing,
              ElementsAre("OsvLFLog", "OsvLFFlush"));
}

TEST_F(ClosedLibraryTest, OfTheScannerWithoutAMandatoryFunctionCantBeUsed) {
  m_libraries.leave_out(kScannerLibrary, "ftrScanGetImage2");
  EXPECT_EQ(finding(kScannerLibrary).kind, eFinding::Bad);
  const Finding found = finding("scanner library");
  EXPECT_EQ(found.kind, eFinding::Bad);
  EXPECT_THAT(found.text, HasSubstr("ftrScanGetImage2"));
  EXPECT_THAT(examine().scanners.interfaces, IsEmpty());
}

TEST_F(ClosedLibraryTest, OfTheScannerWithoutAnExtendedFunctionListsNoScanner) {
  m_libraries.leave_out(kScannerLibrary, "ftrScanSaveExtMemory");
  EXPECT_EQ(finding(kScannerLibrary).kind, eFinding::Bad);
  const Finding level = finding("scanner library");
  EXPECT_EQ(level.kind, eFinding::Bad);
  EXPECT_THAT(level.text, HasSubstr("API level 0"));
  EXPECT_THAT(finding("interface 0").text, HasSubstr("the scanner library is too old"));
}

TEST_F(ClosedLibraryTest, OfTheScannerWithoutAnOptionalFunctionIsOnlyNoted) {
  m_libraries.leave_out(kScannerLibrary, "ftrScanSaveSecret7Bytes");
  const Finding found = finding(kScannerLibrary);
  EXPECT_EQ(found.kind, eFinding::Note);
  EXPECT_THAT(found.text, HasSubstr("ftrScanSaveSecret7Bytes; only the protected bytes"));
  EXPECT_EQ(defects(), 0);
}

}  // namespace
}  // namespace hvk3::test
