#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include "driver/device/device_fixture.h"
#include "driver/support/allocation_count.h"
#include "driver/support/wait_journal.h"

namespace Osv::testing_support {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::SizeIs;

constexpr int kDose = 60;
constexpr char kFetch[] = "ftrScanGetImageByVariableDose";

class FrameFetch : public OpenDeviceTest {
 protected:
  bool fetch() { return m_device.GetImageByDose(m_frame.data(), kDose); }

  bool fetch_with(const std::string& faults) {
    bench.set_faults(faults);
    return fetch();
  }

  WaitJournal m_waits;
};

TEST_F(FrameFetch, MakesOneCallWithTheDoseAndWaitsForNothing) {
  EXPECT_THAT(calls_of([&] { EXPECT_TRUE(fetch()); }),
              ElementsAre("ftrScanGetImageByVariableDose(handle 2, dose 60, buffer) = 1"));
  EXPECT_THAT(m_waits.waits(), IsEmpty());
}

TEST_F(FrameFetch, FillsTheCallersBufferDirectly) {
  static void* given;
  m_device.table().ftrScanGetImageByVariableDose = [](ScannerHandle, int, void* buffer) {
    given = buffer;
    return 1;
  };
  EXPECT_TRUE(fetch());
  EXPECT_EQ(given, m_frame.data());
}

TEST_F(FrameFetch, AllocatesNothing) {
  bench.record(false);
  EXPECT_TRUE(fetch());  // the first frame of a scene is made
  const AllocationCount allocations;
  EXPECT_TRUE(fetch());
  EXPECT_EQ(allocations.so_far(), 0U);
}

TEST_F(FrameFetch, TakesAnyStatusOtherThan0ForSuccess) {
  EXPECT_TRUE(fetch_with("ftrScanGetImageByVariableDose answers -1"));
}

TEST_F(FrameFetch, AsksABusyScannerAgainAfter100Milliseconds) {
  EXPECT_TRUE(fetch_with("ftrScanGetImageByVariableDose call 1 fails with 121"));
  EXPECT_THAT(journal(),
              ElementsAre("ftrScanGetImageByVariableDose(handle 2, dose 60, buffer) = 0",
                          "ftrScanGetLastError() = 121",
                          "ftrScanGetImageByVariableDose(handle 2, dose 60, buffer) = 1"));
  EXPECT_THAT(m_waits.waits(), ElementsAre(Pair(eWait::BoostSleep, 100)));
}

TEST_F(FrameFetch, GivesABusyScannerUpAfter20CallsAnd20Waits) {
  EXPECT_FALSE(fetch_with("ftrScanGetImageByVariableDose fails with 121"));
  EXPECT_EQ(bench.count(kFetch), 20U);
  EXPECT_EQ(bench.count("ftrScanGetLastError"), 20U);
  EXPECT_THAT(m_waits.waits(), SizeIs(20));
  EXPECT_THAT(m_waits.waits(), Each(Pair(eWait::BoostSleep, 100)));
}

TEST_F(FrameFetch, SucceedsOnThe20thCallWithoutAFurtherWait) {
  EXPECT_TRUE(fetch_with("ftrScanGetImageByVariableDose calls 1 to 19 fails with 121"));
  EXPECT_EQ(bench.count(kFetch), 20U);
  EXPECT_EQ(bench.count("ftrScanGetLastError"), 19U);
  EXPECT_THAT(m_waits.waits(), SizeIs(19));
}

TEST_F(FrameFetch, FailsAtOnceForAnyOtherError) {
  for (const char* const error : {"2", "120", "122", "259", "0x20000004"}) {
    bench.clear_journal();
    EXPECT_FALSE(fetch_with(std::string(kFetch) + " fails with " + error));
    EXPECT_EQ(bench.count(kFetch), 1U) << error;
  }
  EXPECT_THAT(m_waits.waits(), IsEmpty());
}

TEST_F(FrameFetch, FailsForAnotherErrorAfterABusyScanner) {
  EXPECT_FALSE(fetch_with(std::string(kFetch) + " call 1 fails with 121;" + kFetch +
                          " call 2 fails with 5"));
  EXPECT_EQ(bench.count(kFetch), 2U);
  EXPECT_THAT(m_waits.waits(), SizeIs(1));
}

TEST_F(FrameFetch, RestoresTheLEDsOnceBehindAllTries) {
  EXPECT_TRUE(m_device.SwitchGreenLED(true));
  bench.clear_journal();
  EXPECT_FALSE(fetch_with("ftrScanGetImageByVariableDose fails with 121"));
  EXPECT_EQ(bench.count("ftrScanSetDiodesStatus"), 1U);
  EXPECT_EQ(journal().back(), "ftrScanSetDiodesStatus(handle 2, green 255, red 0) = 1");
}

TEST_F(FrameFetch, WithoutADeviceGoesToTheLibraryWithANullHandle) {
  m_device.Destroy();
  EXPECT_FALSE(fetch());
  EXPECT_EQ(journal(kFetch).back(), "ftrScanGetImageByVariableDose(handle 0, dose 60, buffer) = 0");
}

using FrameCapture = OpenDeviceTest;

TEST_F(FrameCapture, LogsItsStepsWithTheAddresses) {
  const Words lines =
      lines_of([&] { EXPECT_EQ(m_device.CaptureFrame(m_frame.data(), m_frame.size()), 1); });
  std::array<char, 100> address{};
  std::snprintf(address.data(), address.size(), "%p", static_cast<void*>(m_frame.data()));
  const std::string start = "level 7, 'ClFutronicBaseSDK::CaptureFrame ";
  EXPECT_THAT(lines, ElementsAre(start + "read the image buffer address: " + address.data() + "'",
                                 start + "read the ftrHandle address: 0x2'",
                                 start + "is filling the buffer with 100'",
                                 start + "called  ftrScanGetFrame methode, the return value: 1'",
                                 start + "quit'"));
}

TEST_F(FrameCapture, RestoresTheLEDsBeforeItsLastLogLine) {
  const LogOn log;
  EXPECT_TRUE(m_device.SwitchRedLED(true));
  m_device.CaptureFrame(m_frame.data(), m_frame.size());
  const auto names = functions_called();
  EXPECT_THAT(std::vector(names.end() - 4, names.end()),
              ElementsAre("ftrScanGetFrame", "OsvLFLog", "ftrScanSetDiodesStatus", "OsvLFLog"));
}

TEST_F(FrameCapture, FillsTheBufferWith100EvenWhenTheCallFails) {
  bench.set_faults("ftrScanGetFrame fails with 5");
  EXPECT_EQ(m_device.CaptureFrame(m_frame.data(), m_frame.size()), 0);
  EXPECT_EQ(m_frame, std::vector<unsigned char>(kFrameSize, 100));
}

TEST_F(FrameCapture, FillsNoMoreThanTheSizeGiven) {
  bench.set_faults("ftrScanGetFrame fails with 5");
  m_device.CaptureFrame(m_frame.data(), m_frame.size() - 1);
  EXPECT_EQ(m_frame.back(), 0);
}

TEST_F(FrameCapture, GivesTheLibrarysStatusAsItIs) {
  bench.set_faults("ftrScanGetFrame answers 7; ftrScanGetBacklightImage answers -3");
  EXPECT_EQ(m_device.CaptureFrame(m_frame.data(), m_frame.size()), 7);
  EXPECT_EQ(m_device.CaptureFuzzyImage(m_frame.data()), -3);
}

TEST_F(FrameCapture, PassesNullParametersToTheLibrary) {
  static int calls = 0;
  const auto expectNull = [](ScannerHandle, void*, void* parameters) {
    EXPECT_EQ(parameters, nullptr);
    return ++calls;
  };
  m_device.table().ftrScanGetFrame = expectNull;
  m_device.CaptureFrame(m_frame.data(), m_frame.size());
  m_device.CaptureImage(m_frame.data(), 1);
  EXPECT_EQ(calls, 2);
}

/// An operation that takes an image, and the library function behind it.
struct ImageOperation {
  const char* name;
  const char* function;
  const char* words;
  bool (*take)(DeviceProbe& device, std::vector<unsigned char>& frame);
};

class ImageOperations : public OpenDeviceTest,
                        public ::testing::WithParamInterface<ImageOperation> {
 protected:
  bool take() { return GetParam().take(m_device, m_frame); }
  std::string call(int status) const { return GetParam().words + std::to_string(status); }
  void fail() { bench.set_faults(std::string(GetParam().function) + " fails with 5"); }
};

TEST_P(ImageOperations, CallTheirFunctionOnceAndLeaveDarkLEDsAlone) {
  EXPECT_THAT(calls_of([&] { EXPECT_TRUE(take()); }), ElementsAre(call(1)));
}

TEST_P(ImageOperations, FillTheBufferWithAFrame) {
  EXPECT_TRUE(take());
  EXPECT_NE(std::count(m_frame.begin(), m_frame.end(), m_frame[0]),
            static_cast<long>(m_frame.size()));
}

TEST_P(ImageOperations, RestoreTheLEDsBehindASuccess) {
  EXPECT_TRUE(m_device.SwitchGreenLED(true));
  EXPECT_THAT(calls_of([&] { EXPECT_TRUE(take()); }),
              ElementsAre(call(1), "ftrScanSetDiodesStatus(handle 2, green 255, red 0) = 1"));
}

TEST_P(ImageOperations, RestoreTheLEDsBehindAFailure) {
  EXPECT_TRUE(m_device.SwitchRedLED(true));
  fail();
  Words calls = calls_of([&] { EXPECT_FALSE(take()); });
  EXPECT_EQ(calls.front(), call(0));
  EXPECT_EQ(calls.back(), "ftrScanSetDiodesStatus(handle 2, green 0, red 255) = 1");
}

TEST_P(ImageOperations, SucceedThoughTheLEDsCantBeRestored) {
  EXPECT_TRUE(m_device.SwitchGreenLED(true));
  bench.set_faults("ftrScanSetDiodesStatus fails with 5");
  EXPECT_TRUE(take());
}

INSTANTIATE_TEST_SUITE_P(
    OfTheDevice, ImageOperations,
    ::testing::Values(
        ImageOperation{
            "GetImageByDose", kFetch, "ftrScanGetImageByVariableDose(handle 2, dose 60, buffer) = ",
            [](auto& device, auto& frame) { return device.GetImageByDose(frame.data(), kDose); }},
        ImageOperation{
            "GetImageBlackLight", "ftrScanGetBacklightImage",
            "ftrScanGetBacklightImage(handle 2, buffer) = ",
            [](auto& device, auto& frame) { return device.GetImageBlackLight(frame.data()); }},
        ImageOperation{"GetDarkImage", "ftrScanGetDarkImage",
                       "ftrScanGetDarkImage(handle 2, buffer) = ",
                       [](auto& device, auto& frame) { return device.GetDarkImage(frame.data()); }},
        ImageOperation{"CaptureFrame", "ftrScanGetFrame",
                       "ftrScanGetFrame(handle 2, dose 60, buffer) = ",
                       [](auto& device, auto& frame) {
                         return device.CaptureFrame(frame.data(), frame.size()) != 0;
                       }},
        ImageOperation{
            "CaptureImage", "ftrScanGetFrame", "ftrScanGetFrame(handle 2, dose 60, buffer) = ",
            [](auto& device, auto& frame) { return device.CaptureImage(frame.data(), 4711); }},
        ImageOperation{
            "CaptureFuzzyImage", "ftrScanGetBacklightImage",
            "ftrScanGetBacklightImage(handle 2, buffer) = ",
            [](auto& device, auto& frame) { return device.CaptureFuzzyImage(frame.data()) != 0; }}),
    [](const auto& operation) { return operation.param.name; });

}  // namespace
}  // namespace Osv::testing_support
