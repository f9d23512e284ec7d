#include <gtest/gtest.h>

#include "driver/driver_fixture.h"

namespace Osv::lx {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const Failure kDisconnected = {2, "KR9 scanner is disconnected from the host, error: 2"};

struct ScannerErrors : DriverFixture {};

TEST_F(ScannerErrors, ADisconnectionClosesTheScanner) {
  open();
  EXPECT_EQ(failure_of([&] { driver.CheckScannerError(2); }), kDisconnected);
  EXPECT_FALSE(driver.m_bInitialized);
  EXPECT_EQ(bench.state(0).open_handles, 0U);
}

TEST_F(ScannerErrors, Error31IsStoredAs31AndRefusedWithNumber2) {
  EXPECT_EQ(failure_of([&] { driver.CheckScannerError(31); }), kDisconnected);
  EXPECT_EQ(driver.m_nLastError, 31U);
  EXPECT_EQ(driver.LastErrorText(), kDisconnected.text);
}

TEST_F(ScannerErrors, Error31ClosesTheScanner) {
  open();
  EXPECT_EQ(failure_of([&] { driver.CheckScannerError(31); }), kDisconnected);
  EXPECT_FALSE(driver.m_bInitialized);
}

TEST_F(ScannerErrors, ADisconnectionOfAClosedScannerIsRefusedAllTheSame) {
  EXPECT_EQ(failure_of([&] { driver.CheckScannerError(2); }), kDisconnected);
  EXPECT_THAT(functions(), IsEmpty());
}

TEST_F(ScannerErrors, ADisconnectionClosesBeforeItStoresTheText) {
  open();
  failure_of([&] { driver.CheckScannerError(31); });
  EXPECT_THAT(story(),
              ElementsAre("7 ClFutronicBaseSDK::Destroy close device", "ftrScanSetDiodesStatus",
                          "ftrScanCloseDevice",
                          "7 KR9 scanner. Calling SetLastFGError function. Error number: 31, Error "
                          "description: " +
                              kDisconnected.text));
}

TEST_F(ScannerErrors, Error4306AsksForAWhiteImage) { EXPECT_TRUE(driver.CheckScannerError(4306)); }

TEST_F(ScannerErrors, Error0x20000001LetsTheImageBeUsed) {
  EXPECT_FALSE(driver.CheckScannerError(0x20000001));
}

TEST_F(ScannerErrors, ErrorsThatEndNoCaptureLeaveTheStoredTextAndDoNotLog) {
  driver.SetLastFGError(9, "before");
  bench.clear_journal();
  driver.CheckScannerError(4306);
  driver.CheckScannerError(0x20000001);
  EXPECT_EQ(driver.LastErrorText(), "before");
  EXPECT_EQ(driver.m_nLastError, 9U);
  EXPECT_THAT(log_lines(), IsEmpty());
}

TEST_F(ScannerErrors, AnyOtherErrorIsRefusedWithItsNumberInDecimal) {
  EXPECT_EQ(failure_of([&] { driver.CheckScannerError(121); }),
            (Failure{121, "KR9 scanner. Scanner error: 121"}));
  EXPECT_EQ(driver.LastErrorText(), "KR9 scanner. Scanner error: 121");
  EXPECT_EQ(driver.m_nLastError, 121U);
}

TEST_F(ScannerErrors, AnyOtherErrorLeavesTheScannerOpen) {
  open();
  failure_of([&] { driver.CheckScannerError(121); });
  EXPECT_TRUE(driver.m_bInitialized);
  EXPECT_THAT(functions(), IsEmpty());
}

TEST_F(ScannerErrors, AnyOtherErrorIsLoggedAtLevel3AndThenStored) {
  failure_of([&] { driver.CheckScannerError(121); });
  EXPECT_THAT(
      log_lines(),
      ElementsAre("3 KR9 scanner. Scanner error: 121",
                  "7 KR9 scanner. Calling SetLastFGError function. Error number: 121, Error "
                  "description: KR9 scanner. Scanner error: 121"));
}

TEST_F(ScannerErrors, ANumberWithATextOfItsOwnKeepsTheGeneralTextInTheRefusal) {
  EXPECT_EQ(failure_of([&] { driver.CheckScannerError(0x20000004); }),
            (Failure{0x20000004, "KR9 scanner. Scanner error: 536870916"}));
  EXPECT_EQ(driver.LastErrorText(), "The hardware is incompatible");
}

struct StoredCase {
  unsigned long number;
  unsigned long stored;
  const char* text;

  friend std::ostream& operator<<(std::ostream& out, const StoredCase& row) {
    return out << row.number;
  }
};

struct StoredErrors : DriverFixture, ::testing::WithParamInterface<StoredCase> {};

TEST_P(StoredErrors, NumberAndTextAreStoredAndTheNumberIsTheResult) {
  const StoredCase& row = GetParam();
  EXPECT_EQ(driver.SetLastFGError(row.number, "the caller's text"), row.stored);
  EXPECT_EQ(driver.m_nLastError, row.stored);
  EXPECT_EQ(driver.LastErrorText(), row.text);
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, StoredErrors,
    ::testing::Values(StoredCase{0x20000003, 0x20000003, "The user canceled the action"},
                      StoredCase{0x20000004, 0x20000004, "The hardware is incompatible"},
                      StoredCase{0x20000005, 0x20000005, "The firmware is incompatible"},
                      StoredCase{0x20000006, 83, "Invalid authorization code"},
                      StoredCase{0x20000002, 0x20000002, "the caller's text"},
                      StoredCase{0x20000007, 0x20000007, "the caller's text"},
                      StoredCase{2, 2, "the caller's text"}));

TEST_F(ScannerErrors, NumberZeroWithAnEmptyTextIsStored) {
  driver.SetLastFGError(5, "before");
  EXPECT_EQ(driver.SetLastFGError(0, ""), 0UL);
  EXPECT_EQ(driver.m_nLastError, 0U);
  EXPECT_EQ(driver.LastErrorText(), "");
}

TEST_F(ScannerErrors, StoringLogsTheNumberAndTheTextAsTheyCame) {
  driver.SetLastFGError(0x20000006, "refused");
  EXPECT_THAT(log_lines(),
              ElementsAre("7 KR9 scanner. Calling SetLastFGError function. Error number: "
                          "536870918, Error description: refused"));
}

}  // namespace
}  // namespace Osv::lx
