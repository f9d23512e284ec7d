#include "capture/camera.h"

#include <algorithm>
#include <iterator>

namespace Osv::lx {
namespace {

enum class Unit { PelsPerMetre, DotsPerInch };

struct Resolution {
  Unit unit;
  unsigned int x;
  unsigned int y;
};

struct Parameters {
  eCameraIDs camera;
  eColorModeIDs color_mode;
  std::int32_t left;
  std::uint32_t width;
  std::uint32_t height;
  Resolution resolution;
  bool flag_a;
  bool flag_b;
};

constexpr eColorModeIDs kColor{1};
constexpr Unit kPels = Unit::PelsPerMetre;
constexpr Unit kDpi = Unit::DotsPerInch;

// No row for 8, the one camera offered: preparing a channel writes the scanner's real parameters.
constexpr Parameters kParameters[] = {
    {eCamera2, eColorModeGray, 30, 610, 480, {kPels, 20305, 19850}, false, true},
    {eCamera3, kColor, 50, 768, 526, {kPels, 0, 0}, false, true},
    {eCamera4, eColorModeGray, 0, 640, 480, {kDpi, 860, 533}, true, false},
    {eCamera5, eColorModeGray, 0, 610, 480, {kPels, 19685, 19685}, true, false},
    {eCamera6, kColor, 0, 768, 576, {kDpi, 995, 606}, true, true},
    {eCamera7, eColorModeGray, 0, 640, 480, {kDpi, 500, 500}, false, false},
    {eCamera9, eColorModeGray, 0, 640, 480, {kDpi, 500, 500}, false, true},
};

ClImageResolution in_pels(const Resolution& resolution) {
  ClImageResolution result(resolution.x, resolution.y);
  if (resolution.unit == Unit::DotsPerInch) {
    result.put_DPI(resolution.x, resolution.y);
  }
  return result;
}

void apply(ClLXCamera& camera, const Parameters& parameters) {
  static_cast<ClImageResolution&>(camera) = in_pels(parameters.resolution);
  camera.m_eCamera = parameters.camera;
  camera.m_eColorMode = parameters.color_mode;
  camera.m_nLeft = parameters.left;
  camera.m_nTop = 0;
  camera.m_nWidth = parameters.width;
  camera.m_nHeight = parameters.height;
  camera.m_bFlagA = parameters.flag_a;
  camera.m_bFlagB = parameters.flag_b;
}

}  // namespace

ClLXCamera ClLXCamera::Create(eCameraIDs camera) {
  ClLXCamera record;
  SetCameraParam(record, camera);
  return record;
}

void SetCameraParam(ClLXCamera& camera, eCameraIDs id) {
  if (id == eCamera1) {
    camera.m_eCamera = id;
    return;
  }
  const auto* const row =
      std::find_if(std::begin(kParameters), std::end(kParameters),
                   [id](const Parameters& parameters) { return parameters.camera == id; });
  if (row != std::end(kParameters)) {
    apply(camera, *row);
  }
}

}  // namespace Osv::lx
