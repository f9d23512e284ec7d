#include <dlfcn.h>

#include "libraries/calibration_api.h"
#include "libraries/detector_api.h"
#include "libraries/scanner_api.h"
#include "support/closed_libraries.h"
#include "support/simulator_fixture.h"

namespace Osv::simulator {
namespace {

using CensusTest = SimulatorFixture;

TEST_F(CensusTest, CountsHandlesOfTheScannerUntilTheyAreClosed) {
  void* const handle = ftrScanOpenDeviceOnInterface(0);
  bench.unplug(0);
  EXPECT_EQ(bench.census().scanner_handles, 1U);
  ftrScanCloseDevice(handle);
  EXPECT_EQ(bench.census().scanner_handles, 0U);
  EXPECT_EQ(bench.census().wrong_releases, 0U);
}

TEST_F(CensusTest, CountsEnginesUntilTheyAreDeleted) {
  void* engine = CalibrateCreate();
  EXPECT_EQ(bench.census().engines, 1U);
  CalibrateDelete(&engine);
  EXPECT_EQ(bench.census().engines, 0U);
}

TEST_F(CensusTest, CountsDetectorsUntilTheyAreDestroyed) {
  void* detector = nullptr;
  FakeFingerDetectionInitialize(nullptr);
  FakeFingerDetectionCreateHandle(&detector);
  EXPECT_EQ(bench.census().detectors, 1U);
  FakeFingerDetectionDestroyHandle(&detector);
  FakeFingerDetectionUninitialize();
  EXPECT_EQ(bench.census().detectors, 0U);
}

TEST_F(CensusTest, CountsWhatIsGivenBackTwice) {
  void* const handle = ftrScanOpenDeviceOnInterface(0);
  ftrScanCloseDevice(handle);
  ftrScanCloseDevice(handle);
  void* engine = CalibrateCreate();
  void* same = engine;
  CalibrateDelete(&engine);
  CalibrateDelete(&same);
  EXPECT_EQ(bench.census().wrong_releases, 2U);
}

TEST_F(CensusTest, TakesANullHandleThatIsGivenBackForNoMistake) {
  void* nothing = nullptr;
  ftrScanCloseDevice(nullptr);
  CalibrateDelete(&nothing);
  EXPECT_EQ(bench.census().wrong_releases, 0U);
}

TEST_F(CensusTest, CountsWhatWasLeftInALibraryThatIsClosed) {
  // This program's own copy stays; a variant is another library.
  const std::string path =
      HVK3_SIMULATOR_DIR "/variants/CalibrateSetOption/libostrevancalibratesdk.so";
  void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr);
  reinterpret_cast<void* (*)()>(dlsym(library, "CalibrateCreate"))();
  EXPECT_EQ(bench.census().engines, 1U);
  dlclose(library);
  EXPECT_EQ(bench.census().engines, 0U);
  EXPECT_EQ(bench.census().left_behind, 1U);
}

}  // namespace
}  // namespace Osv::simulator
