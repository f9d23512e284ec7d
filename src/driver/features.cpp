#include "driver/ostrevan_hvk3_sdk.h"
#include "foundation/exceptions.h"
#include "foundation/feature_value.h"
#include "ostrevanhvk3/errors.h"

/// @file
/// The features that the driver handles.

namespace Osv::lx {
namespace {

constexpr unsigned long kCodeSize = 7;    // the authorization code
constexpr unsigned long kSecretSize = 7;  // the protected bytes
constexpr unsigned long kBothSize = kCodeSize + kSecretSize;

[[noreturn]] void throw_null_feature() {
  throw ClLXException(error_text::NullFeature, error_number::NullPointer);
}

unsigned long wrong_count(unsigned long count, unsigned long expected) {
  return count < expected ? error_number::BufferTooSmall : error_number::OutOfRange;
}

/// 0 for a record of so many bytes, else why it is none.
unsigned long check_bytes(const osvlx3_feature& feature, unsigned long count) {
  if (feature.size != 1) {
    return error_number::ElementSize;
  }
  if (feature.count != count) {
    return wrong_count(feature.count, count);
  }
  return feature.data == nullptr ? error_number::NullPointer : 0;
}

unsigned char* bytes_of(const osvlx3_feature& feature) {
  return static_cast<unsigned char*>(feature.data);
}

}  // namespace

unsigned long ClOstrevanHVK3SDK::GetFeature(osvlx3_feature* feature) {
  if (feature == nullptr) {
    throw_null_feature();
  }
  if (const unsigned long result = InitializeScanner(); result != 0) {
    return result;
  }
  switch (feature->id) {
    case eFeatureSecretBytes:
      return ReadSecretBytes(*feature);
    case eFeatureImageDataFormat:
      smart_alloc_feature<unsigned char>(m_nImageDataFormat, *feature);
      return 0;
    case eFeatureAuthorizationCode:
      return error_number::WriteOnly;
    default:
      return error_number::IncorrectProperty;
  }
}

unsigned long ClOstrevanHVK3SDK::SetFeature(const osvlx3_feature* feature) {
  if (const unsigned long result = InitializeScanner(); result != 0) {
    return result;
  }
  if (feature == nullptr) {
    throw_null_feature();
  }
  switch (feature->id) {
    case eFeatureSecretBytes:
      return WriteSecretBytes(*feature);
    case eFeatureImageDataFormat:
      WriteImageDataFormat(*feature);
      return 0;
    case eFeatureAuthorizationCode:
      return WriteAuthorizationCode(*feature);
    default:
      return error_number::IncorrectProperty;
  }
}

unsigned long ClOstrevanHVK3SDK::ReadSecretBytes(osvlx3_feature& feature) {
  if (feature.count != kBothSize) {
    const unsigned long refusal = wrong_count(feature.count, kBothSize);
    feature.count = kBothSize;
    return refusal;
  }
  if (feature.data == nullptr) {
    throw ClLXException(error_text::NullData, error_number::NullPointer);
  }
  unsigned char* const code = bytes_of(feature);
  if (!m_pScanner->RestoreSecret7Bytes(code, code + kCodeSize)) {
    ThrowDeviceError("RestoreSecret7Bytes");
  }
  return 0;
}

unsigned long ClOstrevanHVK3SDK::WriteSecretBytes(const osvlx3_feature& feature) {
  if (const unsigned long refusal = check_bytes(feature, kBothSize); refusal != 0) {
    return refusal;
  }
  unsigned char* const code = bytes_of(feature);
  if (!m_pScanner->SaveSecret7Bytes(code, code + kCodeSize)) {
    ThrowDeviceError("SaveSecret7Bytes");
  }
  return 0;
}

unsigned long ClOstrevanHVK3SDK::WriteAuthorizationCode(const osvlx3_feature& feature) {
  if (const unsigned long refusal = check_bytes(feature, kCodeSize); refusal != 0) {
    return refusal;
  }
  if (!m_pScanner->SetNewAuthorizationCode(feature.data)) {
    ThrowDeviceError("SetNewAuthorizationCode");
  }
  return 0;
}

void ClOstrevanHVK3SDK::WriteImageDataFormat(const osvlx3_feature& feature) {
  const auto format = static_cast<unsigned char>(GetFeatureNumericValue(feature));
  if (format != 1 && format != 2) {
    throw CLX3ModuleException(error_number::OutOfRange);
  }
  m_nImageDataFormat = format;
}

}  // namespace Osv::lx
