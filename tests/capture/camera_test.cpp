#include "capture/camera.h"

#include <gtest/gtest.h>

#include <tuple>

namespace Osv::lx {
namespace {

using Fields = std::tuple<unsigned int, unsigned int, int, int, unsigned int, unsigned int,
                          unsigned int, unsigned int, bool, bool>;

Fields fields(const ClLXCamera& camera) {
  return {camera.m_eCamera, camera.m_eColorMode, camera.m_nLeft, camera.m_nTop,   camera.m_nWidth,
          camera.m_nHeight, camera.get_x(),      camera.get_y(), camera.m_bFlagA, camera.m_bFlagB};
}

Fields created(unsigned int id) { return fields(ClLXCamera::Create(eCameraIDs{id})); }

const Fields kZero{0, 0, 0, 0, 0, 0, 0, 0, false, false};

TEST(Camera, ANewRecordIsAllZero) { EXPECT_EQ(fields(ClLXCamera()), kZero); }

TEST(Camera, Camera1HasItsIdAndAllElseZero) {
  EXPECT_EQ(created(1), (Fields{1, 0, 0, 0, 0, 0, 0, 0, false, false}));
}

TEST(Camera, Camera1ChangesNothingButTheId) {
  ClLXCamera camera = ClLXCamera::Create(eCamera3);
  SetCameraParam(camera, eCamera1);
  EXPECT_EQ(fields(camera), (Fields{1, 1, 50, 0, 768, 526, 0, 0, false, true}));
}

TEST(Camera, EveryCameraHasItsParameters) {
  EXPECT_EQ(created(2), (Fields{2, 0, 30, 0, 610, 480, 20305, 19850, false, true}));
  EXPECT_EQ(created(3), (Fields{3, 1, 50, 0, 768, 526, 0, 0, false, true}));
  EXPECT_EQ(created(4), (Fields{4, 0, 0, 0, 640, 480, 33858, 20984, true, false}));
  EXPECT_EQ(created(5), (Fields{5, 0, 0, 0, 610, 480, 19685, 19685, true, false}));
  EXPECT_EQ(created(6), (Fields{6, 1, 0, 0, 768, 576, 39173, 23858, true, true}));
  EXPECT_EQ(created(7), (Fields{7, 0, 0, 0, 640, 480, 19685, 19685, false, false}));
  EXPECT_EQ(created(9), (Fields{9, 0, 0, 0, 640, 480, 19685, 19685, false, true}));
}

TEST(Camera, TheOfferedCamera8IsAllZero) { EXPECT_EQ(created(8), kZero); }

TEST(Camera, AnUnknownIdChangesNothing) {
  for (const unsigned int id : {0U, 8U, 10U, 0xFFFFFFFFU}) {
    ClLXCamera camera = ClLXCamera::Create(eCamera2);
    SetCameraParam(camera, eCameraIDs{id});
    EXPECT_EQ(fields(camera), created(2)) << id;
  }
}

TEST(Camera, EveryFieldOfAnOldRecordIsReplaced) {
  ClLXCamera camera = ClLXCamera::Create(eCamera6);
  camera.m_nTop = 99;
  SetCameraParam(camera, eCamera2);
  EXPECT_EQ(fields(camera), created(2));
}

TEST(Camera, ACopyHasEveryField) {
  const ClLXCamera camera = ClLXCamera::Create(eCamera6);
  const ClLXCamera copy(camera);
  ClLXCamera assigned;
  assigned = camera;
  EXPECT_EQ(fields(copy), fields(camera));
  EXPECT_EQ(fields(assigned), fields(camera));
}

TEST(Camera, DotsPerInchAreCutToWholePelsPerMetre) {
  ClLXCamera camera;
  camera.put_DPI(860, 533);
  EXPECT_EQ(camera.get_x(), 33858U);
  EXPECT_EQ(camera.get_y(), 20984U);
}

}  // namespace
}  // namespace Osv::lx
