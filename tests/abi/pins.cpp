/// @file
/// Numbers, sizes and names that clients have compiled in. Compiling this is the test. The records
/// pin themselves in their headers, the slots of the interface are pinned by
/// tests/boundary/interface_test.cpp and by the client beside this file.

#include <string_view>

#include "ostrevanhvk3/errors.h"
#include "ostrevanhvk3/exports.h"
#include "ostrevanhvk3/feature_schema.h"
#include "ostrevanhvk3/image_block.h"

namespace {

constexpr bool is(unsigned long value, unsigned long pinned) { return value == pinned; }

constexpr bool is(std::string_view name, std::string_view pinned) { return name == pinned; }

// ---- enumerations

template <typename Enumeration>
constexpr bool has_32_bits = sizeof(Enumeration) == 4;

static_assert(has_32_bits<eCameraIDs> && has_32_bits<eColorModeIDs> &&
              has_32_bits<eCaptureModeIDs> && has_32_bits<eFilterIDs> &&
              has_32_bits<ePropertyIDs> && has_32_bits<eDlgIDs> && has_32_bits<eFGs> &&
              has_32_bits<eFG_HVK3_Events> && has_32_bits<eFeatureIDs>);

static_assert(is(eCamera1, 1) && is(eCamera2, 2) && is(eCamera3, 3) && is(eCamera4, 4) &&
              is(eCamera5, 5) && is(eCamera6, 6) && is(eCamera7, 7) && is(eCamera8, 8) &&
              is(eCamera9, 9));
static_assert(is(eColorModeGray, 0) && is(eFilterNone, 0));
static_assert(is(eCaptureLive, 0) && is(eCapturePlain, 1) && is(eCaptureRolled, 2) &&
              is(eCaptureFastPlain, 3) && is(eCapturePreview, 4) &&
              is(eCapturePreviewAutoDetect, 5));
static_assert(is(ePropChannelCount, 3) && is(ePropLiveliness, 6) && is(ePropRedLED, 7) &&
              is(ePropGreenLED, 8) && is(ePropFakeDetection, 12) && is(ePropLowContrastImage, 13));
static_assert(is(eFG_HVK3, 19) && is(eFG_HVK3_FakeFinger, 0));
static_assert(is(eFeatureAuthorizationCode, 53) && is(eFeatureSecretBytes, 54) &&
              is(eFeatureImageDataFormat, 55));

// ---- classes and records

static_assert(sizeof(Osv::lx::ClFramegrabber) == sizeof(void*));
static_assert(sizeof(Osv::lx::ClImageResolution) == 16);
static_assert(sizeof(Osv::lx::CLX3ModuleException) == 4);
static_assert(offsetof(tagBITMAPINFOHEADER, biSize) == 0 &&
              offsetof(tagBITMAPINFOHEADER, biWidth) == 4 &&
              offsetof(tagBITMAPINFOHEADER, biHeight) == 8 &&
              offsetof(tagBITMAPINFOHEADER, biPlanes) == 12 &&
              offsetof(tagBITMAPINFOHEADER, biBitCount) == 14 &&
              offsetof(tagBITMAPINFOHEADER, biCompression) == 16 &&
              offsetof(tagBITMAPINFOHEADER, biSizeImage) == 20 &&
              offsetof(tagBITMAPINFOHEADER, biXPelsPerMeter) == 24 &&
              offsetof(tagBITMAPINFOHEADER, biYPelsPerMeter) == 28 &&
              offsetof(tagBITMAPINFOHEADER, biClrUsed) == 32);

// ---- error numbers

namespace number = Osv::lx::error_number;

static_assert(is(number::ReportedBit, 0x10000000));
static_assert(is(number::NotConnected, 2) && is(number::UnknownCamera, 3) &&
              is(number::IncorrectChannel, 4) && is(number::ColorMode, 9) &&
              is(number::UnknownDetection, 10) && is(number::UnknownFilter, 11) &&
              is(number::IncorrectProperty, 12) && is(number::NotSupported, 14) &&
              is(number::BufferTooSmall, 17) && is(number::PropertyReadOnly, 18) &&
              is(number::FilterNotApplicable, 21) && is(number::HardwareVersion, 22) &&
              is(number::NoNumber, 23) && is(number::DeviceIndex, 27) &&
              is(number::CalibrationCorrupt, 37) && is(number::ApiVersion, 40));
static_assert(is(number::NotEnoughStorage, 51) && is(number::OutOfRange, 52) &&
              is(number::ElementSize, 53) && is(number::FrameInfoType, 57) &&
              is(number::DetectionDisabled, 58) && is(number::DetectionNotLoaded, 59) &&
              is(number::NullPointer, 60) && is(number::InvalidState, 65) &&
              is(number::UnknownVersion, 74) && is(number::AlreadyCapturing, 77) &&
              is(number::WriteOnly, 82) && is(number::AuthorizationCode, 83));
static_assert(is(number::ScannerCanceled, 0x20000003) && is(number::ScannerHardware, 0x20000004) &&
              is(number::ScannerFirmware, 0x20000005) &&
              is(number::ScannerAuthorization, 0x20000006) &&
              is(number::VersionTooSmall, 0x20000011) &&
              is(number::VersionNullPointer, 0x2000003C));

// ---- symbols

namespace symbol = Osv::lx::symbol;

static_assert(is(symbol::GetFrameGrabber, "GetFrameGrabber") &&
              is(symbol::DestroyFrameGrabber, "DestroyFrameGrabber") &&
              is(symbol::CurrentFrameInfo, "FGCurrentFrameInfo") &&
              is(symbol::GetFeature, "_Z15LXSP_GetFeaturejP14osvlx3_feature") &&
              is(symbol::SetFeature, "_Z15LXSP_SetFeaturejPK14osvlx3_feature") &&
              is(symbol::Free, "_Z9LXSP_FreePv"));
static_assert(is(symbol::GetFeatureSchema,
                 "_ZN3Osv2lx16GetFeatureSchemaEjR21osvlx3_feature_schemab") &&
              is(symbol::CopyFeatures1,
                 "_ZN3Osv2lx13CopyFeatures1EPK21osvlx3_feature_schemajPPS1_") &&
              is(symbol::UnitToDevice,
                 "_ZN3Osv2lx20unit_schema2dev_infoERK18osvlx3_unit_schemaR10DeviceInfo") &&
              is(symbol::DeviceToUnit,
                 "_ZN3Osv2lx20dev_info2unit_schemaERK10DeviceInfoR18osvlx3_unit_schemaj") &&
              is(symbol::ImageToBiodata, "_ZN3Osv2lx13image2biodataEPKhP21osvlx3_biometric_data") &&
              is(symbol::VersionText, "_ZN3Osv2lx10infver2strEt"));
static_assert(is(symbol::IsLiveMode, "_ZN3Osv2lx10isLiveModeEj") &&
              is(symbol::IsPlainMode, "_ZN3Osv2lx11isPlainModeEj") &&
              is(symbol::IsPreviewMode, "_ZN3Osv2lx13isPreviewModeEj") &&
              is(symbol::IsPreviewAutoDetectMode, "_ZN3Osv2lx23isPreviewAutoDetectModeEj") &&
              is(symbol::IsRollMode, "_ZN3Osv2lx10isRollModeEj") &&
              is(symbol::IsSignatureMode, "_ZN3Osv2lx15isSignatureModeEj") &&
              is(symbol::CaptureMode, "_ZN3Osv2lx17CapOption2CapModeEj"));

}  // namespace
