#include <cstdint>

#include "driver/ostrevan_hvk3_sdk.h"
#include "foundation/exceptions.h"
#include "foundation/logging_client.h"
#include "ostrevanhvk3/errors.h"

/// @file
/// The driver's numbered properties, and those of the fake finger detector by name.

namespace Osv::lx {
namespace {

constexpr unsigned int kHighSecurity = 2;
constexpr unsigned int kNormalSecurity = 1;

/// How a switch reads, whatever value switched it on.
unsigned int switch_value(bool on) {
  constexpr unsigned int kOn = 100;
  return on ? kOn : 0;
}

}  // namespace

unsigned long ClOstrevanHVK3SDK::GetProperty(ePropertyIDs id, unsigned int& value) {
  OSV_LOG(OsvLFTrace, "KR9 scanner. Reading of KR9 scanner property. Property ID: %d, value: %d",
          id, value);
  if (const unsigned long result = InitializeScanner(); result != 0) {
    return result;
  }
  switch (id) {
    case ePropChannelCount:
      value = 1;
      break;
    case ePropLiveliness: {
      const Guard guard(m_cLock);
      value = switch_value(m_pLiveDetection->IsInit());
      break;
    }
    case ePropRedLED:
      value = switch_value(m_pScanner->StateRedLED());
      break;
    case ePropGreenLED:
      value = switch_value(m_pScanner->StateGreenLED());
      break;
    case ePropFakeDetection:
      value = FakeDetectionThreshold();
      break;
    case ePropLowContrastImage:
      if (const auto calibration = m_pCalibration.get()) {
        value = switch_value(calibration->IsSensitiveMode());
      }
      break;
    default:
      Refuse(error_number::IncorrectProperty, error_text::IncorrectProperty);
  }
  return 0;
}

unsigned long ClOstrevanHVK3SDK::SetProperty(ePropertyIDs id, unsigned int value) {
  OSV_LOG(OsvLFTrace, "KR9 scanner setting of property. Property ID: %d, value: %d", id, value);
  if (const unsigned long result = InitializeScanner(); result != 0) {
    return result;
  }
  switch (id) {
    case ePropChannelCount:
      throw ClLXException(error_text::PropertyReadOnly, error_number::PropertyReadOnly);
    case ePropLiveliness:
      SetFakeFingerDetection(value);
      break;
    case ePropRedLED:
      SwitchLED(&ClFutronicBaseSDK::SwitchRedLED, value != 0);
      break;
    case ePropGreenLED:
      SwitchLED(&ClFutronicBaseSDK::SwitchGreenLED, value != 0);
      break;
    case ePropFakeDetection:
      m_pLiveDetection->SetFakeScore(value);
      break;
    case ePropLowContrastImage:
      if (const auto calibration = m_pCalibration.get()) {
        calibration->EnableSensitiveMode(value != 0);
      }
      break;
    default:
      Refuse(error_number::IncorrectProperty, error_text::IncorrectProperty);
  }
  return 0;
}

void ClOstrevanHVK3SDK::Refuse(int number, const char* text) {
  SetLastFGError(static_cast<unsigned long>(number), text);
  throw ClLXException(text, number);
}

unsigned int ClOstrevanHVK3SDK::FakeDetectionThreshold() const {
  if (!m_pLiveDetection->IsInit()) {
    return 0;
  }
  // Curves that start crossed give a threshold that fills 32 bits.
  return static_cast<unsigned int>(static_cast<std::int64_t>(m_pLiveDetection->GetFakeScore()));
}

void ClOstrevanHVK3SDK::SetFakeFingerDetection(unsigned int value) {
  const Guard guard(m_cLock);
  const unsigned int securityLevel = value == kHighSecurity ? kHighSecurity : kNormalSecurity;
  if (value == 0) {
    m_pLiveDetection->Uninit();
    m_pLDImages.reset();
  } else if (m_pLiveDetection->IsInit()) {
    m_pLiveDetection->SetSecurityLevel(securityLevel);
  } else {
    StartFakeFingerDetection(securityLevel);
  }
}

void ClOstrevanHVK3SDK::StartFakeFingerDetection(unsigned int securityLevel) {
  try {
    m_pLiveDetection->Init();
    m_pLiveDetection->SetSecurityLevel(securityLevel);
  } catch (const CXDynamicLibraryException&) {
    // A library that is missing is none of these: it reaches the client with the loader's text.
    Refuse(error_number::DetectionNotLoaded, error_text::DetectionNotLoaded);
  }
}

void ClOstrevanHVK3SDK::SwitchLED(bool (ClFutronicBaseSDK::*led)(bool), bool on) {
  const Guard guard(m_cLock);
  if (!(m_pScanner.get()->*led)(on)) {
    ThrowDeviceError("Switch the LED failed");
  }
}

void ClOstrevanHVK3SDK::GetLDProperty(unsigned long /*unused*/, const char* name, char* value,
                                      unsigned long* size) {
  RequireLiveDetection();
  const Guard guard(m_cLock);
  RequireLiveDetection();
  const std::string text = m_pLiveDetection->GetProperty(name);
  const bool fits = *size >= text.size();
  *size = text.size();
  if (!fits) {
    Refuse(error_number::BufferTooSmall, error_text::BufferTooSmall);
  }
  text.copy(value, text.size());
}

void ClOstrevanHVK3SDK::SetLDProperty(unsigned long /*unused*/, const char* name,
                                      const char* value) {
  RequireLiveDetection();
  const Guard guard(m_cLock);
  RequireLiveDetection();
  m_pLiveDetection->SetProperty(name, value);
}

void ClOstrevanHVK3SDK::RequireLiveDetection() {
  if (m_pLiveDetection == nullptr) {
    Refuse(error_number::DetectionDisabled, error_text::DetectionDisabled);
  }
}

}  // namespace Osv::lx
