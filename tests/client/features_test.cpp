#include <array>
#include <cstring>

#include "client/client_fixture.h"
#include "ostrevanhvk3/feature_schema.h"
#include "support/module_failure.h"

namespace Osv::client {
namespace {

using testing_support::module_number;

/// The features of a loaded plug-in.
class ClientFeatures : public ClientTest {
 protected:
  unsigned long get(osvlx3_feature& feature) { return plugin.get_feature()(kChannel, &feature); }
  unsigned long set(const osvlx3_feature& feature) {
    return plugin.set_feature()(kChannel, &feature);
  }

  osvlx3_feature record(eFeatureIDs id, std::uint64_t count) {
    return {id, 0, count, 1, bytes.data()};
  }

  std::array<unsigned char, 14> bytes = {};
};

TEST_F(ClientFeatures, ProtectedBytesAreWrittenAndReadBackUnderANewCode) {
  std::memcpy(bytes.data(), "code123", 7);
  ASSERT_EQ(set(record(eFeatureAuthorizationCode, 7)), 0U);
  std::memcpy(bytes.data() + 7, "secret7", 7);
  ASSERT_EQ(set(record(eFeatureSecretBytes, 14)), 0U);
  std::memset(bytes.data() + 7, 0, 7);
  osvlx3_feature feature = record(eFeatureSecretBytes, 14);
  EXPECT_EQ(get(feature), 0U);
  EXPECT_EQ(std::memcmp(bytes.data(), "code123secret7", 14), 0);
}

TEST_F(ClientFeatures, AWrongCodeIsNumber83WithItsText) {
  bytes[0] = 1;
  osvlx3_feature feature = record(eFeatureSecretBytes, 14);
  EXPECT_EQ(get(feature), 0x10000053U);
  EXPECT_EQ(last_text(), "Invalid authorization code");
  EXPECT_EQ(set(feature), 0x10000053U);
}

TEST_F(ClientFeatures, RefusalsByNumberAreBareAndLeaveTheStoredText) {
  grabber->SetResolution(kChannel, lx::ClImageResolution());
  const std::string before = last_text();
  osvlx3_feature secret = record(eFeatureSecretBytes, 13);
  osvlx3_feature code = record(eFeatureAuthorizationCode, 7);
  osvlx3_feature unknown{99, 0, 1, 1, bytes.data()};
  EXPECT_EQ(get(secret), 17U);
  EXPECT_EQ(get(code), 82U);
  EXPECT_EQ(get(unknown), 12U);
  EXPECT_EQ(set(unknown), 12U);
  EXPECT_EQ(last_text(), before);
}

TEST_F(ClientFeatures, NullRecordsAndNullDataAreNumber60WithTheirTexts) {
  EXPECT_EQ(plugin.get_feature()(kChannel, nullptr), 0x1000003CU);
  EXPECT_EQ(last_text(), "Feature must not be NULL");
  EXPECT_EQ(plugin.set_feature()(kChannel, nullptr), 0x1000003CU);
  osvlx3_feature feature = record(eFeatureSecretBytes, 14);
  feature.data = nullptr;
  EXPECT_EQ(get(feature), 0x1000003CU);
  EXPECT_EQ(last_text(), "Data must not be NULL");
}

TEST_F(ClientFeatures, AFunctionThatTheScannerLibraryLacksIsReportedWithATextAndNever0) {
  libraries.leave_out("libKR9ScanAPI.so", "ftrScanSetNewAuthorizationCode");
  osvlx3_feature secret = record(eFeatureSecretBytes, 14);
  for (const unsigned long result :
       {get(secret), set(secret), set(record(eFeatureAuthorizationCode, 7))}) {
    EXPECT_EQ(result, 0x10000017U);
    EXPECT_EQ(last_text(), "The scanner hardware version is not supported");
  }
}

TEST_F(ClientFeatures, TheImageDataFormatIsAllocatedAndGoesBackWithFree) {
  osvlx3_feature feature{eFeatureImageDataFormat, 0, 0, 0, nullptr};
  ASSERT_EQ(get(feature), 0U);
  EXPECT_EQ(*static_cast<unsigned char*>(feature.data), 1);
  EXPECT_EQ(plugin.free()(feature.data), 0U);
}

TEST_F(ClientFeatures, TheImageDataFormatIsKeptUntilTheNextOpening) {
  bytes[0] = 2;
  ASSERT_EQ(set(record(eFeatureImageDataFormat, 1)), 0U);
  osvlx3_feature feature = record(eFeatureImageDataFormat, 1);
  bytes[0] = 0;
  ASSERT_EQ(get(feature), 0U);
  EXPECT_EQ(bytes[0], 2);
  disconnect();
  connect();
  ASSERT_EQ(get(feature), 0U);
  EXPECT_EQ(bytes[0], 1);
}

TEST_F(ClientFeatures, WhatIsThrownAtTheClientIsCaughtByItsType) {
  osvlx3_feature feature{eFeatureImageDataFormat, 0, 1, 2, bytes.data()};
  EXPECT_EQ(module_number([&] { get(feature); }), 53U);
  bytes[0] = 3;
  EXPECT_EQ(module_number([&] { set(record(eFeatureImageDataFormat, 1)); }), 52U);
  const auto version = plugin.function<lx::VersionTextFunction>(lx::symbol::VersionText);
  EXPECT_EQ(module_number([&] { version(7); }), 74U);
}

TEST_F(ClientFeatures, TheDriverWorksOnBehindAnExceptionOfItsOwn) {
  osvlx3_feature feature{eFeatureImageDataFormat, 0, 1, 2, bytes.data()};
  EXPECT_EQ(module_number([&] { get(feature); }), 53U);
  EXPECT_FALSE(snap().empty());
}

TEST_F(ClientFeatures, EverySymbolOfTheFeatureInterfaceCanBeHad) {
  for (const char* name :
       {lx::symbol::GetFeatureSchema, lx::symbol::CopyFeatures1, lx::symbol::UnitToDevice,
        lx::symbol::DeviceToUnit, lx::symbol::ImageToBiodata, lx::symbol::VersionText,
        lx::symbol::IsLiveMode, lx::symbol::IsPlainMode, lx::symbol::IsPreviewMode,
        lx::symbol::IsPreviewAutoDetectMode, lx::symbol::IsRollMode, lx::symbol::IsSignatureMode,
        lx::symbol::CaptureMode}) {
    EXPECT_NE(plugin.function<void (*)()>(name), nullptr) << name;
  }
}

TEST_F(ClientFeatures, ASnappedImageIsWrappedAndGoesBackWithFree) {
  const Image image = snap();
  ASSERT_FALSE(image.empty());
  osvlx3_biometric_data data{};
  plugin.function<lx::ImageToBiodataFunction>(lx::symbol::ImageToBiodata)(image.data(), &data);
  ASSERT_NE(data.data, nullptr);
  const auto& header = *static_cast<const osvlx3_biometric_image*>(data.data);
  const lx::ImageView view(image.data());
  EXPECT_EQ(static_cast<std::size_t>(header.width), view.width());
  EXPECT_EQ(header.bytes_per_row, view.stride());
  EXPECT_EQ(std::memcmp(header.pixels, view.pixels(), header.pixel_size), 0);
  plugin.free()(data.data);
}

}  // namespace
}  // namespace Osv::client
