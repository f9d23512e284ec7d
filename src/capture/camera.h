#pragma once

#include <cstdint>

#include "ostrevanhvk3/enumerations.h"
#include "ostrevanhvk3/image_resolution.h"

/// @file
/// The parameter record of a camera.

namespace Osv::lx {

/// Size, position and resolution of a camera's image. This family of scanners leaves offsets and
/// flags at 0 and false; other cameras use them.
class ClLXCamera : public ClImageResolution {
 public:
  /// A record for `camera`; all zero for an id without parameters, 8 being one.
  static ClLXCamera Create(eCameraIDs camera);

  eCameraIDs m_eCamera{};        ///< 0: no camera set
  eColorModeIDs m_eColorMode{};  ///< the camera's own, not the one the client chose
  std::int32_t m_nLeft = 0;      ///< first offset
  std::int32_t m_nTop = 0;       ///< second offset
  std::uint32_t m_nWidth = 0;    ///< pixels
  std::uint32_t m_nHeight = 0;   ///< pixels
  bool m_bFlagA = false;
  bool m_bFlagB = false;
};

/// Writes the parameters of `id` into `camera`; an unknown id changes nothing, and id 1 has nothing
/// but itself to write.
void SetCameraParam(ClLXCamera& camera, eCameraIDs id);

}  // namespace Osv::lx
