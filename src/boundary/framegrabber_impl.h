#pragma once

#include <vector>

#include "ostrevanhvk3/enumerations.h"

/// @file
/// The capability lists of a frame grabber.

namespace Osv::lx {

/// What a frame grabber can do, as numbered lists. Filled while the facade is built and only read
/// afterwards.
class ClFramegrabberImpl {
 public:
  virtual ~ClFramegrabberImpl() = default;

  /// @name Lists
  /// @param count in: capacity of `list` in elements; out: the number of elements
  /// @return 0; 17 when `count` is too small; 60 when it suffices and `list` is null
  /// @{
  unsigned long AvailableCameras(eCameraIDs* list, unsigned long& count) const;
  unsigned long AvailableColorModes(eColorModeIDs* list, unsigned long& count) const;
  unsigned long AvailableDetections(eCaptureModeIDs* list, unsigned long& count) const;
  unsigned long AvailableFilters(eFilterIDs* list, unsigned long& count) const;
  unsigned long AvailableProperties(ePropertyIDs* list, unsigned long& count) const;
  unsigned long AvailablePropertiesEx(ePropertyIDs* list, unsigned long& count) const;
  /// @}

  bool FilterCheck(eFilterIDs filter) const;
  bool CameraCheck(eCameraIDs camera) const;
  bool DetectionCheck(eCaptureModeIDs mode) const;

 protected:
  std::vector<eCameraIDs> m_vCameras;
  std::vector<eColorModeIDs> m_vColorModes;
  std::vector<eCaptureModeIDs> m_vDetections;
  std::vector<eFilterIDs> m_vFilters;
  std::vector<ePropertyIDs> m_vProperties;
  std::vector<ePropertyIDs> m_vPropertiesEx;
  std::vector<unsigned int> m_vSpare;
};

}  // namespace Osv::lx
