#include "client/client_fixture.h"

namespace Osv::client {
namespace {

constexpr char kPreparationFailed[] = "Couldn't read the image size of scanner. error: 2";

/// A scanner that was unplugged and plugged in again while it was open and nothing was captured.
class IdleUnplugging : public ClientTest {
 protected:
  IdleUnplugging() {
    EXPECT_FALSE(snap().empty());
    bench.unplug(0);
    bench.plug_in_again(0);
  }

  /// Captures until capture has ended by itself. @return its error's text
  std::string error_of_capture() {
    recorder.clear();
    EXPECT_EQ(start(eCaptureLive), 0U);
    EXPECT_TRUE(recorder.wait_for(eEvent::Stop));
    EXPECT_EQ(stop(), 0U);
    const Events errors = recorder.of(eEvent::Error);
    return errors.empty() ? "" : errors.front().text;
  }

  bool captures() {
    recorder.clear();
    return start(eCaptureLive) == 0 && recorder.wait_for(eEvent::Live, 2);
  }
};

TEST_F(IdleUnplugging, ShowsAsTheErrorOfThePreparationAtEachStart) {
  EXPECT_EQ(error_of_capture(), kPreparationFailed);
  EXPECT_EQ(error_of_capture(), kPreparationFailed);
}

TEST_F(IdleUnplugging, FailsASnapWithNumber2EachTime) {
  for (int round = 0; round < 2; ++round) {
    unsigned char* image = nullptr;
    EXPECT_EQ(grabber->GetImage(kChannel, &image), 0x10000002U);
    EXPECT_EQ(last_text(), "Couldn't read the image size of scanner.");
  }
}

TEST_F(IdleUnplugging, IsForgottenWhenAnInterfaceWithoutAScannerIsChosen) {
  ASSERT_EQ(error_of_capture(), kPreparationFailed);
  EXPECT_EQ(grabber->SetActiveDevice(127), 0x1000001BU);
  EXPECT_TRUE(captures());
}

TEST_F(IdleUnplugging, IsNotForgottenWhenTheSameInterfaceIsChosen) {
  ASSERT_EQ(grabber->SetActiveDevice(0), 0U);
  EXPECT_EQ(error_of_capture(), kPreparationFailed);
}

TEST_F(IdleUnplugging, IsForgottenWithTheFrameGrabber) {
  ASSERT_EQ(error_of_capture(), kPreparationFailed);
  disconnect();
  connect();
  EXPECT_TRUE(captures());
}

using Reopening = ClientTest;

TEST_F(Reopening, KeepsFakeFingerDetectionAndLosesTheLowContrastImage) {
  ASSERT_EQ(grabber->SetFGProperty(ePropLiveliness, 1), 0U);
  ASSERT_EQ(grabber->SetFGProperty(ePropLowContrastImage, 1), 0U);
  EXPECT_EQ(grabber->SetActiveDevice(127), 0x1000001BU);
  unsigned int detection = 7;
  unsigned int contrast = 7;
  EXPECT_EQ(grabber->GetFGProperty(ePropLiveliness, detection), 0U);
  EXPECT_EQ(grabber->GetFGProperty(ePropLowContrastImage, contrast), 0U);
  EXPECT_EQ(detection, 100U);
  EXPECT_EQ(contrast, 0U);
}

}  // namespace
}  // namespace Osv::client
