#include "client/client_fixture.h"

namespace Osv::client {
namespace {

using ::testing::HasSubstr;

constexpr char kScannerLibrary[] = "libKR9ScanAPI.so";
constexpr char kEngineLibrary[] = "libostrevancalibratesdk.so";

/// A system on which a closed library is missing, or too old to use.
class MissingLibrary : public ClientTest {
 protected:
  /// Every operation that needs the scanner says so.
  void expect_loader_text(const std::string& text) {
    unsigned char* image = nullptr;
    unsigned long size = 0;
    const auto says_so = [&](unsigned long result) {
      EXPECT_EQ(result, 0x10000017U);
      EXPECT_THAT(last_text(), HasSubstr(text));
    };
    says_so(grabber->GetImage(kChannel, &image));
    says_so(grabber->GetInfo(nullptr, size));
    says_so(start(eCaptureLive));
    says_so(grabber->SetCamera(kChannel, eCamera8, eColorModeGray));
    EXPECT_EQ(image, nullptr);
    EXPECT_TRUE(recorder.all().empty());
  }
};

TEST_F(MissingLibrary, WithoutTheScannerLibraryTheLoadersTextIsReported) {
  libraries.make_absent(kScannerLibrary);
  expect_loader_text(kScannerLibrary);
}

TEST_F(MissingLibrary, WithoutTheScannerLibraryListAndChoiceReportItToo) {
  libraries.make_absent(kScannerLibrary);
  unsigned long count = 0;
  EXPECT_EQ(grabber->AvailableDevices(nullptr, count), 0x10000017U);
  EXPECT_THAT(last_text(), HasSubstr(kScannerLibrary));
  EXPECT_EQ(grabber->SetActiveDevice(0), 0x10000017U);
  EXPECT_THAT(last_text(), HasSubstr(kScannerLibrary));
}

TEST_F(MissingLibrary, AScannerLibraryThatLacksAFunctionIsReportedWithItsName) {
  libraries.leave_out(kScannerLibrary, "ftrScanGetImage2");
  expect_loader_text("ftrScanGetImage2");
}

TEST_F(MissingLibrary, WithoutTheEngineTheLoadersTextIsReported) {
  libraries.make_absent(kEngineLibrary);
  expect_loader_text(kEngineLibrary);
}

TEST_F(MissingLibrary, AnEngineThatLacksAFunctionIsReportedWithItsName) {
  libraries.leave_out(kEngineLibrary, "CalibrateGetOption");
  expect_loader_text("CalibrateGetOption");
}

TEST_F(MissingLibrary, ScannersAreListedWithoutTheEngine) {
  libraries.make_absent(kEngineLibrary);
  unsigned long count = 0;
  EXPECT_EQ(grabber->AvailableDevices(nullptr, count), 0x10000011U);
  EXPECT_EQ(count, 1U);
}

TEST_F(MissingLibrary, OnceTheLibraryIsThereTheNextOperationWorks) {
  libraries.make_absent(kScannerLibrary);
  EXPECT_TRUE(snap().empty());
  libraries.use_plain(kScannerLibrary);
  EXPECT_FALSE(snap().empty());
}

TEST_F(MissingLibrary, AScannerLibraryOfTheBaseLevelKnowsNoScannerOfTheFamily) {
  libraries.leave_out(kScannerLibrary, "ftrScanGetVersion");
  unsigned long count = 5;
  std::vector<DeviceInfo> list(count);
  EXPECT_EQ(grabber->AvailableDevices(list.data(), count), 0U);
  EXPECT_EQ(count, 0U);
  EXPECT_EQ(start(eCaptureLive), 0x10000002U);
}

TEST_F(MissingLibrary, WithoutTheDetectorCaptureWorks) {
  libraries.make_absent("libostrevanfakefingerdetection.so");
  ASSERT_EQ(start(eCaptureLive), 0U);
  EXPECT_TRUE(recorder.wait_for(eEvent::Live, 2));
}

}  // namespace
}  // namespace Osv::client
