#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include "driver/driver_fixture.h"
#include "support/module_failure.h"

namespace Osv::lx {
namespace {

using testing_support::module_number;

constexpr unsigned int kCode = 53;
constexpr unsigned int kSecret = 54;
constexpr unsigned int kFormat = 55;

using Bytes = std::array<unsigned char, 16>;

/// A driver whose scanner has an authorization code and protected bytes.
class Features : public DriverFixture {
 protected:
  Features() {
    simulator::Device device;
    device.authorization_code = {1, 2, 3, 4, 5, 6, 7};
    device.secret = {11, 12, 13, 14, 15, 16, 17};
    bench.plug_in(0, device);
    driver.SetLastFGError(9, "earlier");
    bench.clear_journal();
  }

  osvlx3_feature record(unsigned int id, std::uint64_t count, std::uint64_t size = 1) {
    return {id, 0, count, size, bytes.data()};
  }

  /// A refusal by a bare number stores nothing.
  void expect_untouched_error() {
    EXPECT_EQ(driver.LastErrorText(), "earlier");
    EXPECT_EQ(driver.m_nLastError, 9U);
  }

  unsigned int format() { return driver.m_nImageDataFormat; }

  Bytes bytes = {1, 2, 3, 4, 5, 6, 7};  // the right code, and room
};

// ---- protected bytes

TEST_F(Features, ProtectedBytesAreReadBehindTheCodeThatTheClientSupplies) {
  osvlx3_feature feature = record(kSecret, 14);
  EXPECT_EQ(driver.GetFeature(&feature), 0UL);
  EXPECT_EQ(bytes, (Bytes{1, 2, 3, 4, 5, 6, 7, 11, 12, 13, 14, 15, 16, 17, 0, 0}));
}

TEST_F(Features, ProtectedBytesAreReadWhateverTheElementSizeSays) {
  osvlx3_feature feature = record(kSecret, 14, 2);
  EXPECT_EQ(driver.GetFeature(&feature), 0UL);
  EXPECT_EQ(bytes[7], 11);
}

TEST_F(Features, ProtectedBytesInRoomFor13AreRefusedWith17AndTheCountIsSetTo14) {
  osvlx3_feature feature = record(kSecret, 13);
  EXPECT_EQ(driver.GetFeature(&feature), 17UL);
  EXPECT_EQ(feature.count, 14U);
  EXPECT_EQ(feature.size, 1U);
  EXPECT_EQ(bench.count("ftrScanRestoreSecret7Bytes"), 0U);
  expect_untouched_error();
}

TEST_F(Features, ProtectedBytesInRoomFor15AreRefusedWith52AndTheCountIsSetTo14) {
  osvlx3_feature feature = record(kSecret, 15);
  EXPECT_EQ(driver.GetFeature(&feature), 52UL);
  EXPECT_EQ(feature.count, 14U);
  EXPECT_EQ(bench.count("ftrScanRestoreSecret7Bytes"), 0U);
  expect_untouched_error();
}

TEST_F(Features, ProtectedBytesWithoutDataAreRefusedWith60AndAText) {
  osvlx3_feature feature = record(kSecret, 14);
  feature.data = nullptr;
  EXPECT_EQ(failure_of([&] { driver.GetFeature(&feature); }),
            (Failure{60, "Data must not be NULL"}));
}

TEST_F(Features, AWrongCountOfProtectedBytesIsFoundBeforeMissingData) {
  for (const auto& [count, refusal] : {std::pair{13U, 17UL}, std::pair{15U, 52UL}}) {
    osvlx3_feature feature{kSecret, 0, count, 1, nullptr};
    EXPECT_EQ(driver.GetFeature(&feature), refusal);
    EXPECT_EQ(feature.count, 14U);
  }
  expect_untouched_error();
}

TEST_F(Features, ProtectedBytesUnderAWrongCodeAreRefusedByTheScanner) {
  bytes[0] = 99;
  osvlx3_feature feature = record(kSecret, 14);
  EXPECT_EQ(failure_of([&] { driver.GetFeature(&feature); }),
            (Failure{0x20000006, "RestoreSecret7Bytes"}));
  EXPECT_EQ(bytes[7], 0);
}

TEST_F(Features, ProtectedBytesAreWrittenUnderTheCode) {
  bytes = {1, 2, 3, 4, 5, 6, 7, 21, 22, 23, 24, 25, 26, 27};
  const osvlx3_feature feature = record(kSecret, 14);
  EXPECT_EQ(driver.SetFeature(&feature), 0UL);
  EXPECT_EQ(bench.state(0).secret, (simulator::SevenBytes{21, 22, 23, 24, 25, 26, 27}));
}

TEST_F(Features, ProtectedBytesAreNotWrittenUnderAWrongCode) {
  bytes[6] = 99;
  const osvlx3_feature feature = record(kSecret, 14);
  EXPECT_EQ(failure_of([&] { driver.SetFeature(&feature); }),
            (Failure{0x20000006, "SaveSecret7Bytes"}));
  EXPECT_EQ(bench.state(0).secret[0], 11);
}

// ---- authorization code

TEST_F(Features, TheAuthorizationCodeIsWriteOnly) {
  osvlx3_feature feature = record(kCode, 7);
  EXPECT_EQ(driver.GetFeature(&feature), 82UL);
  expect_untouched_error();
}

TEST_F(Features, TheAuthorizationCodeIsReplaced) {
  bytes = {31, 32, 33, 34, 35, 36, 37};
  const osvlx3_feature feature = record(kCode, 7);
  EXPECT_EQ(driver.SetFeature(&feature), 0UL);
  EXPECT_EQ(bench.state(0).authorization_code, (simulator::SevenBytes{31, 32, 33, 34, 35, 36, 37}));
}

TEST_F(Features, AnAuthorizationCodeThatTheScannerRefusesIsReported) {
  bench.set_faults("ftrScanSetNewAuthorizationCode fails with 0x20000006");
  const osvlx3_feature feature = record(kCode, 7);
  EXPECT_EQ(failure_of([&] { driver.SetFeature(&feature); }),
            (Failure{0x20000006, "SetNewAuthorizationCode"}));
}

/// A record that a writing is refused for.
struct BadBytes {
  unsigned int id;
  std::uint64_t count;
  std::uint64_t size;
  bool data;
  unsigned long refusal;

  friend std::ostream& operator<<(std::ostream& out, const BadBytes& row) {
    return out << row.id << ": " << row.count << " of " << row.size;
  }
};

struct RefusedBytes : Features, ::testing::WithParamInterface<BadBytes> {};

TEST_P(RefusedBytes, ChangeNeitherRecordNorScannerNorTheStoredError) {
  osvlx3_feature feature = record(GetParam().id, GetParam().count, GetParam().size);
  feature.data = GetParam().data ? bytes.data() : nullptr;
  EXPECT_EQ(driver.SetFeature(&feature), GetParam().refusal);
  EXPECT_EQ(feature.count, GetParam().count);
  EXPECT_EQ(feature.size, GetParam().size);
  EXPECT_EQ(bench.count("ftrScanSaveSecret7Bytes"), 0U);
  EXPECT_EQ(bench.count("ftrScanSetNewAuthorizationCode"), 0U);
  expect_untouched_error();
}

INSTANTIATE_TEST_SUITE_P(
    Table, RefusedBytes,
    ::testing::Values(BadBytes{kSecret, 14, 2, true, 53}, BadBytes{kSecret, 13, 0, true, 53},
                      BadBytes{kSecret, 13, 1, true, 17}, BadBytes{kSecret, 0, 1, true, 17},
                      BadBytes{kSecret, 15, 1, true, 52}, BadBytes{kSecret, 14, 1, false, 60},
                      BadBytes{kSecret, 13, 1, false, 17}, BadBytes{kSecret, 15, 1, false, 52},
                      BadBytes{kSecret, 14, 2, false, 53}, BadBytes{kCode, 7, 2, false, 53},
                      BadBytes{kCode, 6, 1, false, 17}, BadBytes{kCode, 8, 1, false, 52},
                      BadBytes{kCode, 7, 7, true, 53}, BadBytes{kCode, 6, 1, true, 17},
                      BadBytes{kCode, 8, 1, true, 52}, BadBytes{kCode, 14, 1, true, 52},
                      BadBytes{kCode, 7, 1, false, 60}));

// ---- functions that an older scanner library lacks

struct MissingFunction {
  const char* symbol;
  unsigned int id;
  std::uint64_t count;
  bool writing;

  friend std::ostream& operator<<(std::ostream& out, const MissingFunction& row) {
    return out << row.symbol;
  }
};

struct MissingFunctions : Features, ::testing::WithParamInterface<MissingFunction> {};

TEST_P(MissingFunctions, AreNumber22WithItsTextAndNoCallThroughNull) {
  libraries.leave_out("libKR9ScanAPI.so", GetParam().symbol);
  osvlx3_feature feature = record(GetParam().id, GetParam().count);
  try {
    GetParam().writing ? driver.SetFeature(&feature) : driver.GetFeature(&feature);
    FAIL() << "no failure";
  } catch (const ClKR9NOTImplException& failure) {
    EXPECT_EQ(failure.GetErrorNumber(), 22);
    EXPECT_STREQ(failure.GetDescription(), "The scanner hardware version is not supported");
  }
}

INSTANTIATE_TEST_SUITE_P(
    Table, MissingFunctions,
    ::testing::Values(MissingFunction{"ftrScanSetNewAuthorizationCode", kCode, 7, true},
                      MissingFunction{"ftrScanSaveSecret7Bytes", kSecret, 14, true},
                      MissingFunction{"ftrScanRestoreSecret7Bytes", kSecret, 14, false}));

// ---- image data format

TEST_F(Features, TheImageDataFormatIs1AfterEachOpening) {
  driver.m_nImageDataFormat = 2;
  osvlx3_feature feature = record(kFormat, 1);
  EXPECT_EQ(driver.GetFeature(&feature), 0UL);
  EXPECT_EQ(bytes[0], 1);
}

TEST_F(Features, TheImageDataFormatIsAllocatedForAClientThatHasNoRoom) {
  osvlx3_feature feature{kFormat, 0, 0, 0, nullptr};
  EXPECT_EQ(driver.GetFeature(&feature), 0UL);
  EXPECT_EQ(feature.count, 1U);
  EXPECT_EQ(feature.size, 1U);
  ASSERT_NE(feature.data, nullptr);
  EXPECT_EQ(*static_cast<unsigned char*>(feature.data), 1);
  std::free(feature.data);
}

TEST_F(Features, TheImageDataFormatInBadRoomIsThrownAtTheClient) {
  osvlx3_feature feature = record(kFormat, 1, 2);
  EXPECT_EQ(module_number([&] { driver.GetFeature(&feature); }), 53U);
  feature = record(kFormat, 1);
  feature.data = nullptr;
  EXPECT_EQ(module_number([&] { driver.GetFeature(&feature); }), 60U);
  expect_untouched_error();
}

TEST_F(Features, TheImageDataFormatCanBe1Or2AndIsReadBack) {
  for (const int value : {2, 1, 2}) {
    bytes[0] = static_cast<unsigned char>(value);
    osvlx3_feature feature = record(kFormat, 1);
    EXPECT_EQ(driver.SetFeature(&feature), 0UL);
    bytes[0] = 0;
    EXPECT_EQ(driver.GetFeature(&feature), 0UL);
    EXPECT_EQ(bytes[0], value);
  }
}

TEST_F(Features, AnImageDataFormatOf0Or3IsThrownAs52AndTheOldOneStays) {
  open();
  driver.m_nImageDataFormat = 2;
  for (const int value : {0, 3, 255}) {
    bytes[0] = static_cast<unsigned char>(value);
    const osvlx3_feature feature = record(kFormat, 1);
    EXPECT_EQ(module_number([&] { driver.SetFeature(&feature); }), 52U);
    EXPECT_EQ(format(), 2U);
  }
}

TEST_F(Features, AnImageDataFormatOf258InTwoBytesCountsAs2) {
  const std::uint16_t value = 258;
  const osvlx3_feature feature{kFormat, 0, 1, 2, const_cast<std::uint16_t*>(&value)};
  EXPECT_EQ(driver.SetFeature(&feature), 0UL);
  EXPECT_EQ(format(), 2U);
}

TEST_F(Features, AnImageDataFormatOfAnotherWidthOrWithoutDataIsThrown) {
  osvlx3_feature feature = record(kFormat, 1, 8);
  EXPECT_EQ(module_number([&] { driver.SetFeature(&feature); }), 53U);
  feature = record(kFormat, 1);
  feature.data = nullptr;
  EXPECT_EQ(module_number([&] { driver.SetFeature(&feature); }), 60U);
  EXPECT_EQ(format(), 1U);
}

// ---- all features

TEST_F(Features, AnyOtherNumberIsRefusedWith12) {
  for (const unsigned int id : {0U, 3U, 6U, 7U, 12U, 13U, 50U, 52U, 56U, 99U}) {
    osvlx3_feature feature = record(id, 1);
    EXPECT_EQ(driver.GetFeature(&feature), 12UL) << id;
    EXPECT_EQ(driver.SetFeature(&feature), 12UL) << id;
  }
  expect_untouched_error();
}

TEST_F(Features, ANullRecordIsRefusedWith60BeforeTheOpeningOnReadingAndBehindItOnWriting) {
  const Failure expected = {60, "Feature must not be NULL"};
  EXPECT_EQ(failure_of([&] { driver.GetFeature(nullptr); }), expected);
  EXPECT_FALSE(driver.m_bInitialized);
  EXPECT_EQ(failure_of([&] { driver.SetFeature(nullptr); }), expected);
  EXPECT_TRUE(driver.m_bInitialized);
}

TEST_F(Features, WithoutAScannerAreA2AndLeaveTheRecord) {
  bench.unplug_all();
  osvlx3_feature feature = record(kSecret, 13);
  EXPECT_EQ(driver.GetFeature(&feature), 2UL);
  EXPECT_EQ(driver.SetFeature(&feature), 2UL);
  EXPECT_EQ(driver.SetFeature(nullptr), 2UL);
  EXPECT_EQ(feature.count, 13U);
}

}  // namespace
}  // namespace Osv::lx
