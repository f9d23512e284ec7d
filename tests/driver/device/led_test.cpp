#include <gmock/gmock.h>

#include "driver/device/device_fixture.h"

namespace Osv::testing_support {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using LEDs = OpenDeviceTest;

TEST_F(LEDs, SwitchGreenLEDSendsGreen255AndSwitchesItOffAgain) {
  EXPECT_THAT(calls_of([&] {
                EXPECT_TRUE(m_device.SwitchGreenLED(true));
                EXPECT_TRUE(m_device.SwitchGreenLED(false));
              }),
              ElementsAre("ftrScanSetDiodesStatus(handle 2, green 255, red 0) = 1",
                          "ftrScanSetDiodesStatus(handle 2, green 0, red 0) = 1"));
}

TEST_F(LEDs, SwitchRedLEDSendsRed255AndSwitchesItOffAgain) {
  EXPECT_THAT(calls_of([&] {
                EXPECT_TRUE(m_device.SwitchRedLED(true));
                EXPECT_TRUE(m_device.SwitchRedLED(false));
              }),
              ElementsAre("ftrScanSetDiodesStatus(handle 2, green 0, red 255) = 1",
                          "ftrScanSetDiodesStatus(handle 2, green 0, red 0) = 1"));
}

TEST_F(LEDs, EachKeepsItsLevelWhenTheOtherIsSwitched) {
  EXPECT_TRUE(m_device.SwitchGreenLED(true));
  EXPECT_THAT(calls_of([&] {
                EXPECT_TRUE(m_device.SwitchRedLED(true));
                EXPECT_TRUE(m_device.SwitchGreenLED(false));
              }),
              ElementsAre("ftrScanSetDiodesStatus(handle 2, green 255, red 255) = 1",
                          "ftrScanSetDiodesStatus(handle 2, green 0, red 255) = 1"));
}

TEST_F(LEDs, Number1IsTheGreenOne) {
  EXPECT_TRUE(m_device.SwitchLEDState(1, true));
  EXPECT_TRUE(m_device.StateGreenLED());
  EXPECT_FALSE(m_device.StateRedLED());
}

TEST_F(LEDs, AnyOtherNumberIsTheRedOne) {
  for (const unsigned int led : {0U, 2U, 3U, 0xFFFFFFFFU}) {
    EXPECT_TRUE(m_device.SwitchRedLED(false));
    EXPECT_TRUE(m_device.SwitchLEDState(led, true));
    EXPECT_TRUE(m_device.StateRedLED()) << led;
    EXPECT_FALSE(m_device.StateGreenLED()) << led;
  }
}

TEST_F(LEDs, RememberTheirLevelThoughTheCallFails) {
  bench.set_faults("ftrScanSetDiodesStatus fails with 5");
  EXPECT_FALSE(m_device.SwitchGreenLED(true));
  EXPECT_FALSE(m_device.SwitchRedLED(true));
  EXPECT_EQ(m_device.m_nGreenLED, 255);
  EXPECT_EQ(m_device.m_nRedLED, 255);
}

TEST_F(LEDs, RestoreSendsNothingWhileBothAreOff) {
  EXPECT_THAT(calls_of([&] { EXPECT_TRUE(m_device.RestoreLEDsState()); }), IsEmpty());
}

TEST_F(LEDs, RestoreWithOnlyTheGreenOneOnSendsGreen255Red0) {
  EXPECT_TRUE(m_device.SwitchGreenLED(true));
  EXPECT_THAT(calls_of([&] { EXPECT_TRUE(m_device.RestoreLEDsState()); }),
              ElementsAre("ftrScanSetDiodesStatus(handle 2, green 255, red 0) = 1"));
}

TEST_F(LEDs, RestoreWithOnlyTheRedOneOnSendsGreen0Red255) {
  EXPECT_TRUE(m_device.SwitchRedLED(true));
  EXPECT_THAT(calls_of([&] { EXPECT_TRUE(m_device.RestoreLEDsState()); }),
              ElementsAre("ftrScanSetDiodesStatus(handle 2, green 0, red 255) = 1"));
}

TEST_F(LEDs, RestoreIsFalseWhenTheCallFails) {
  EXPECT_TRUE(m_device.SwitchGreenLED(true));
  bench.set_faults("ftrScanSetDiodesStatus fails with 5");
  EXPECT_FALSE(m_device.RestoreLEDsState());
}

}  // namespace
}  // namespace Osv::testing_support
