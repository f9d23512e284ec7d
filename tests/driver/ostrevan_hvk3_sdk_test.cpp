#include "driver/ostrevan_hvk3_sdk.h"

#include <gtest/gtest.h>

#include <array>
#include <future>
#include <thread>

#include "driver/driver_fixture.h"

namespace Osv::lx {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

ClMultiString list_of(std::initializer_list<const char*> texts) {
  ClMultiString list;
  for (const char* text : texts) {
    list.Add(text);
  }
  return list;
}

TEST(MultiStringCopy, ANullBufferOfSizeZeroAsksForTheSize) {
  unsigned long size = 0;
  EXPECT_EQ(MultiStringCpy(list_of({"ab", "c"}), nullptr, size), 17UL);
  EXPECT_EQ(size, 6UL);
}

TEST(MultiStringCopy, ABufferOneByteTooSmallIsLeftAlone) {
  std::array<char, 5> buffer{'x', 'x', 'x', 'x', 'x'};
  unsigned long size = buffer.size();
  EXPECT_EQ(MultiStringCpy(list_of({"ab", "c"}), buffer.data(), size), 17UL);
  EXPECT_EQ(size, 6UL);
  EXPECT_THAT(buffer, ::testing::Each('x'));
}

TEST(MultiStringCopy, ANullBufferOfSufficientSizeGives60) {
  unsigned long size = 100;
  EXPECT_EQ(MultiStringCpy(list_of({"ab", "c"}), nullptr, size), 60UL);
  EXPECT_EQ(size, 6UL);
}

TEST(MultiStringCopy, StringsAndBothZerosAreCopiedAndTheSizeIsWrittenBack) {
  std::array<char, 8> buffer{'x', 'x', 'x', 'x', 'x', 'x', 'x', 'x'};
  unsigned long size = buffer.size();
  EXPECT_EQ(MultiStringCpy(list_of({"ab", "c"}), buffer.data(), size), 0UL);
  EXPECT_EQ(size, 6UL);
  EXPECT_THAT(buffer, ElementsAre('a', 'b', '\0', 'c', '\0', '\0', 'x', 'x'));
}

TEST(MultiStringCopy, AnEmptyListNeedsOneByte) {
  std::array<char, 1> buffer{'x'};
  unsigned long size = 1;
  EXPECT_EQ(MultiStringCpy(ClMultiString(), buffer.data(), size), 0UL);
  EXPECT_EQ(size, 1UL);
  EXPECT_EQ(buffer[0], '\0');
}

struct DriverObject : DriverFixture {};

TEST_F(DriverObject, ConstructionTouchesNoLibraryButTheLog) {
  const auto before = libraries.openings().size();
  const Driver another;
  EXPECT_EQ(libraries.openings().size(), before);
  EXPECT_THAT(functions(), IsEmpty());
}

TEST_F(DriverObject, AFreshDriverHasChosenNoScannerAndIsClosed) {
  EXPECT_EQ(driver.m_nActiveScanner, 0xFFFFFFFFU);
  EXPECT_FALSE(driver.m_bInitialized);
  EXPECT_EQ(driver.m_nImageDataFormat, 1);
  EXPECT_EQ(driver.m_dLifeness, 0.0);
  EXPECT_EQ(driver.m_nLifenessState, 0);
  EXPECT_EQ(driver.LastErrorText(), "");
  EXPECT_EQ(driver.m_pCalibration.get(), nullptr);
  EXPECT_FALSE(driver.m_pLiveDetection->IsInit());
}

TEST_F(DriverObject, ThereIsOneChannelAndItHasNumberOne) {
  ASSERT_EQ(driver.m_cChannels.size(), 1U);
  EXPECT_EQ(driver.m_cChannels.capacity(), 1U);
  EXPECT_EQ(driver.channel().m_nChannel, 1U);
}

TEST_F(DriverObject, TheChannelCountIsOneInAllStates) {
  EXPECT_EQ(driver.get_channel_count(), 1UL);
  open();
  EXPECT_EQ(driver.get_channel_count(), 1UL);
  driver.UninitializeScanner();
  EXPECT_EQ(driver.get_channel_count(), 1UL);
}

TEST_F(DriverObject, OperationsThatTheScannerDoesNotHaveDoNothing) {
  driver.UninitializeSDK(driver.channel());
  driver.StartLiveCapturing(driver.channel());
  driver.StopLiveCapturing(driver.channel());
  utilities::ClSimpleBitmap bitmap;
  driver.TriggerImage(driver.channel(), bitmap);
  EXPECT_FALSE(driver.WaitForPlainFinger(driver.channel(), bitmap));
  EXPECT_FALSE(driver.HasSelfDetection(driver.channel()));
  EXPECT_THAT(story(), IsEmpty());
}

TEST_F(DriverObject, TheScannerStaysOpenWhenCaptureEnds) {
  open();
  driver.UninitializeSDK(driver.channel());
  EXPECT_TRUE(driver.m_bInitialized);
}

TEST_F(DriverObject, LockTakesNoLock) {
  EXPECT_TRUE(driver.Lock());
  const bool free = std::async(std::launch::async, [&] {
                      return driver.Lock() && driver.IsDirty(driver.channel());
                    }).get();
  driver.UnLock();
  EXPECT_TRUE(free);
}

TEST_F(DriverObject, FreeingAnIdleDriverTouchesNothing) {
  driver.FreeSDK();
  EXPECT_THAT(story(), IsEmpty());
}

TEST_F(DriverObject, UninitializingAClosedScannerDoesNothing) {
  driver.UninitializeScanner();
  EXPECT_THAT(story(), IsEmpty());
}

TEST_F(DriverObject, UninitializingAnOpenScannerClosesIt) {
  open();
  driver.UninitializeScanner();
  EXPECT_THAT(functions(), ElementsAre("ftrScanSetDiodesStatus", "ftrScanCloseDevice"));
  EXPECT_FALSE(driver.m_bInitialized);
  EXPECT_NE(driver.m_pCalibration.get(), nullptr);
}

TEST_F(DriverObject, OnTheWayDownTheSessionEndsThenTheEngineGoesAndTheScannerIsClosedLast) {
  {
    Driver another;
    ASSERT_EQ(another.InitializeScanner(), 0UL);
    another.m_pLiveDetection->Init();
    bench.clear_journal();
  }
  EXPECT_THAT(functions(),
              ElementsAre("FakeFingerDetectionDestroyHandle", "FakeFingerDetectionUninitialize",
                          "CalibrateDelete", "ftrScanSetDiodesStatus", "ftrScanCloseDevice"));
}

struct Description : DriverFixture {
  /// The description as its strings.
  std::vector<std::string> read() {
    std::array<char, 256> buffer{};
    unsigned long size = buffer.size();
    EXPECT_EQ(driver.GetSDKInfo(buffer.data(), size), 0UL);
    std::vector<std::string> texts;
    for (const char* text = buffer.data(); *text != '\0'; text += texts.back().size() + 1) {
      texts.emplace_back(text);
    }
    return texts;
  }
};

TEST_F(Description, ItIsNameSerialNumberAndTwoVersions) {
  EXPECT_THAT(read(), ElementsAre("Ostrevan KR9 scanner", "HVK30001", "2.1", "3.4.5"));
}

TEST_F(Description, ReadingItIsLogged) {
  driver.ReadSDKInfo();
  EXPECT_EQ(log_lines().front(), "7 KR9 scanner. Calling ReadSDKInfo function.");
}

TEST_F(Description, ReadingItOpensTheScanner) {
  EXPECT_EQ(driver.ReadSDKInfo(), 0UL);
  EXPECT_TRUE(driver.m_bInitialized);
}

TEST_F(Description, TheSizeCanBeAskedFor) {
  unsigned long size = 0;
  EXPECT_EQ(driver.GetSDKInfo(nullptr, size), 17UL);
  EXPECT_EQ(size, 21UL + 9 + 4 + 6 + 1);
}

TEST_F(Description, ItIsReadOnceInADriversLife) {
  read();
  bench.clear_journal();
  read();
  EXPECT_THAT(story(), ElementsAre("7 KR9 scanner. Calling ReadSDKInfo function."));
}

TEST_F(Description, AChangeOfScannerLeavesItAsItIs) {
  bench.plug_in(5, {.serial = "HVK30005"});
  const auto first = read();
  bench.list_from_base(true);
  ASSERT_EQ(driver.SetActiveScanner(5), 0UL);
  EXPECT_EQ(read(), first);
}

TEST_F(Description, WithoutAScannerTheResultIs2AndNothingIsKept) {
  bench.unplug_all();
  unsigned long size = 0;
  EXPECT_EQ(driver.GetSDKInfo(nullptr, size), 2UL);
  EXPECT_TRUE(driver.m_cSDKInfo.IsEmpty());
}

TEST_F(Description, AnUnreadableSerialNumberIsRefusedWithTheScannersNumber) {
  open();
  bench.set_faults("ftrScanGetSerialNumber call 1 fails with 77");
  EXPECT_EQ(failure_of([&] { driver.ReadSDKInfo(); }),
            (Failure{77, "Could not read the serial number of the scanner."}));
}

TEST_F(Description, AfterAnUnreadableSerialNumberTheNameStandsAlone) {
  open();
  bench.set_faults("ftrScanGetSerialNumber call 1 fails with 77");
  failure_of([&] { driver.ReadSDKInfo(); });
  EXPECT_EQ(driver.ReadSDKInfo(), 0UL);
  EXPECT_THAT(read(), ElementsAre("Ostrevan KR9 scanner"));
}

TEST_F(Description, WithoutVersionsTheRevisionTakesTheirPlace) {
  open();
  bench.set_faults("ftrScanGetVersion fails with 1");
  EXPECT_THAT(read(), ElementsAre("Ostrevan KR9 scanner", "HVK30001", "simulated unit 1"));
}

TEST_F(Description, TheRevisionIs1BeforeTheFirstOpening) {
  EXPECT_EQ(driver.GetRevisionStr(), "1");
  EXPECT_THAT(functions(), IsEmpty());
}

TEST_F(Description, TheRevisionIsThatOfTheCalibrationBlock) {
  open();
  EXPECT_EQ(driver.GetRevisionStr(), "simulated unit 1");
}

}  // namespace
}  // namespace Osv::lx
