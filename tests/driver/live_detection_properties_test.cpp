#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

#include "driver/driver_fixture.h"

namespace Osv::lx {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

const std::string kVersion = std::string("1.0.0 simulated") + '\0';
const Failure kDisabled = {58, "The live detection is disabled"};

/// A driver that has touched no scanner, with the detector on.
class LiveDetectionProperties : public DriverFixture {
 protected:
  LiveDetectionProperties() {
    driver.m_pLiveDetection->Init();
    bench.clear_journal();
  }

  std::string value = std::string(32, 'x');
  unsigned long size = 32;
};

TEST_F(LiveDetectionProperties, AreReadByNameWithTheZeroThatTheDetectorCounts) {
  driver.GetLDProperty(0, "Version", value.data(), &size);
  EXPECT_EQ(size, kVersion.size());
  EXPECT_EQ(value, kVersion + std::string(32 - kVersion.size(), 'x'));
}

TEST_F(LiveDetectionProperties, FitABufferOfExactlyTheirLength) {
  size = kVersion.size();
  driver.GetLDProperty(0, "Version", value.data(), &size);
  EXPECT_EQ(size, kVersion.size());
  EXPECT_EQ(value.substr(0, kVersion.size() + 1), kVersion + "x");
}

TEST_F(LiveDetectionProperties, GetNoTerminatingZeroOfTheDrivers) {
  // A detector that counts no zero: of what it writes nothing is left but the room made for it.
  bench.set_faults(
      "FakeFingerDetectionGetPropertyA call 1 answers -21 with length 5;"
      "FakeFingerDetectionGetPropertyA call 2 answers 0");
  size = 5;
  driver.GetLDProperty(0, "Version", value.data(), &size);
  EXPECT_EQ(size, 5U);
  EXPECT_EQ(value.substr(0, 6), "00000x");
}

TEST_F(LiveDetectionProperties, ThatDoNotFitAreRefusedWith17AndTheLength) {
  size = kVersion.size() - 1;
  const Failure expected = {17, "The buffer is to small"};
  EXPECT_EQ(failure_of([&] { driver.GetLDProperty(0, "Version", value.data(), &size); }), expected);
  EXPECT_EQ(size, kVersion.size());
  EXPECT_EQ(value, std::string(32, 'x'));
  EXPECT_EQ(driver.LastErrorText(), expected.text);
  EXPECT_EQ(driver.m_nLastError, 17U);
}

TEST_F(LiveDetectionProperties, AreWrittenByName) {
  driver.SetLDProperty(0, "nSecurityLevel", "2");
  EXPECT_THAT(journal(), ElementsAre(HasSubstr("'nSecurityLevel', '2') = 0")));
  EXPECT_EQ(driver.m_pLiveDetection->GetSecurityLevel(), 2U);
}

TEST_F(LiveDetectionProperties, NeitherOpenTheScannerNorUseTheirFirstArgument) {
  driver.SetLDProperty(99, "nSecurityLevel", "1");
  driver.GetLDProperty(99, "Version", value.data(), &size);
  EXPECT_FALSE(driver.m_bInitialized);
  EXPECT_EQ(bench.count("ftrScanGetInterfaces"), 0U);
}

TEST_F(LiveDetectionProperties, ThatTheDetectorDoesNotKnowAreItsOwnFailure) {
  EXPECT_THROW(driver.SetLDProperty(0, "unknown", "2"), CLiveDetectionException);
  EXPECT_THROW(driver.GetLDProperty(0, "unknown", value.data(), &size), CLiveDetectionException);
  EXPECT_EQ(size, 32U);
}

TEST_F(LiveDetectionProperties, OfADetectorThatIsOffAreRefusedWith58) {
  driver.m_pLiveDetection->Uninit();
  bench.clear_journal();
  EXPECT_EQ(failure_of([&] { driver.GetLDProperty(0, "Version", value.data(), &size); }),
            kDisabled);
  EXPECT_EQ(failure_of([&] { driver.SetLDProperty(0, "nSecurityLevel", "2"); }), kDisabled);
  EXPECT_THAT(journal(), IsEmpty());
}

TEST_F(LiveDetectionProperties, WithoutASessionAreRefusedWith58AndTheErrorIsStored) {
  std::unique_ptr<CLiveDetection> kept = std::move(driver.m_pLiveDetection);
  EXPECT_EQ(failure_of([&] { driver.GetLDProperty(0, "Version", value.data(), &size); }),
            kDisabled);
  EXPECT_EQ(driver.LastErrorText(), kDisabled.text);
  driver.SetLastFGError(0, "");
  EXPECT_EQ(failure_of([&] { driver.SetLDProperty(0, "nSecurityLevel", "2"); }), kDisabled);
  EXPECT_EQ(driver.m_nLastError, 58U);
  driver.m_pLiveDetection = std::move(kept);
}

}  // namespace
}  // namespace Osv::lx
